# Brings VekLib::VekLib: the DLL and the import library for the C++ ABI and the width that the host is built for.
if(TARGET VekLib::VekLib)
    return()
endif()

function(veklib_find prefix)
    if(CMAKE_SIZEOF_VOID_P EQUAL 8)
        set(flavour win64)
    elseif(CMAKE_SIZEOF_VOID_P EQUAL 4)
        set(flavour win32)
    endif()
    if(MSVC OR CMAKE_CXX_SIMULATE_ID STREQUAL "MSVC")
        string(APPEND flavour -msvc)
        set(library VekLib.lib)
    elseif(MINGW)
        string(APPEND flavour -gnu)
        set(library libVekLib.dll.a)
    endif()
    # An installation for one of them only may do without their folders.
    foreach(folder /${flavour} "")
        if(library AND EXISTS ${prefix}/bin${folder}/VekLib.dll AND EXISTS ${prefix}/lib${folder}/${library})
            set(bin ${prefix}/bin${folder})
            set(lib ${prefix}/lib${folder})
            break()
        endif()
    endforeach()
    if(NOT flavour MATCHES "^win.*-" OR NOT bin OR CMAKE_CXX_COMPILER_ARCHITECTURE_ID MATCHES "ARM")
        set(VekLib_FOUND FALSE PARENT_SCOPE)
        set(VekLib_NOT_FOUND_MESSAGE "${prefix} has no VekLib for this compiler (${CMAKE_CXX_COMPILER_ID} ${flavour})" PARENT_SCOPE)
        return()
    endif()
    add_library(VekLib::VekLib SHARED IMPORTED)
    set_target_properties(VekLib::VekLib PROPERTIES
        IMPORTED_LOCATION ${bin}/VekLib.dll
        IMPORTED_IMPLIB ${lib}/${library}
        INTERFACE_INCLUDE_DIRECTORIES ${prefix}/include
        INTERFACE_COMPILE_FEATURES cxx_std_17)
endfunction()

get_filename_component(veklib_prefix ${CMAKE_CURRENT_LIST_DIR}/../../.. ABSOLUTE)
veklib_find(${veklib_prefix})
unset(veklib_prefix)
