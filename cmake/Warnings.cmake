# Link privately with veklib_warnings to be held to the project's warnings.
option(VEKLIB_WERROR "Treat warnings as errors" ${PROJECT_IS_TOP_LEVEL})

add_library(veklib_warnings INTERFACE)
# A host that builds VekLib with its own compiler and options is not shown what they find here.
if(NOT PROJECT_IS_TOP_LEVEL AND NOT VEKLIB_WERROR)
    return()
endif()
if(MSVC)
    # 4251, 4275: members and bases of exported classes whose code every module makes for itself.
    target_compile_options(veklib_warnings INTERFACE
        $<$<COMPILE_LANGUAGE:CXX>:/W4 $<$<CXX_COMPILER_ID:MSVC>:/wd4251 /wd4275> $<$<BOOL:${VEKLIB_WERROR}>:/WX>>)
    return()
endif()
target_compile_options(veklib_warnings INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Woverloaded-virtual -Wnon-virtual-dtor -Wimplicit-fallthrough
        # printf-like members read wide text; MinGW's checker knows the narrow rules only.
        -Wno-format
    >
    # Sanitizer code makes GCC guess wrong about uninitialised values: there warnings stay warnings.
    $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<BOOL:${VEKLIB_WERROR}>,$<NOT:$<BOOL:${VEKLIB_GUARD}>>>:-Werror>
)
