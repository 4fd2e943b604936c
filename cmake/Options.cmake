# What every file of ours is compiled with, library, tests and programs alike, whatever the toolchain file says. A
# product and a sum are rounded one by one, so that plain arithmetic gives the same bits in every build.
add_library(veklib_options INTERFACE)
target_compile_definitions(veklib_options INTERFACE UNICODE _UNICODE)
target_link_libraries(veklib_options INTERFACE veklib_warnings)
if(MSVC)
    target_compile_definitions(veklib_options INTERFACE NOMINMAX _CRT_SECURE_NO_WARNINGS)
    target_compile_options(veklib_options INTERFACE
        $<$<COMPILE_LANGUAGE:CXX>:/permissive- /Zc:__cplusplus /utf-8 /GS /guard:cf /fp:precise>
        $<$<COMPILE_LANG_AND_ID:CXX,Clang>:/clang:-ffp-contract=off>)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        target_compile_options(veklib_options INTERFACE
            $<$<COMPILE_LANG_AND_ID:CXX,MSVC>:/arch:SSE2> $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-msse2>)
    endif()
    target_link_options(veklib_options INTERFACE /Brepro /DYNAMICBASE /NXCOMPAT /guard:cf
        $<$<EQUAL:${CMAKE_SIZEOF_VOID_P},8>:/HIGHENTROPYVA>)
    # Of the static runtime's two parts the larger is in every Windows; hosts share its heap and its files.
    if(CMAKE_MSVC_RUNTIME_LIBRARY MATCHES "^MultiThreaded")
        set(debug "")
        if(CMAKE_MSVC_RUNTIME_LIBRARY MATCHES "Debug")
            set(debug $<$<CONFIG:Debug>:d>)
        endif()
        if(NOT CMAKE_MSVC_RUNTIME_LIBRARY MATCHES "DLL$")
            target_link_options(veklib_options INTERFACE /NODEFAULTLIB:libucrt${debug}.lib /DEFAULTLIB:ucrt${debug}.lib)
        endif()
    endif()
else()
    target_compile_options(veklib_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fstack-protector-strong -ffp-contract=off>)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        # SSE2: x87 registers keep excess precision, and a value "narrowed to float" would not be.
        # Stack realignment: the 32-bit Windows ABI promises 4 bytes, GCC's SSE spills need 16.
        target_compile_options(veklib_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-msse2 -mfpmath=sse -mstackrealign>)
    endif()
    # One DLL and no runtime DLLs beside it: libgcc, libstdc++ and winpthread are linked in.
    target_link_options(veklib_options INTERFACE -fstack-protector-strong -static)
endif()
if(VEKLIB_GUARD)
    # Its checks would count as branches.
    if(NOT VEKLIB_COVERAGE)
        target_compile_options(veklib_options INTERFACE
            $<$<COMPILE_LANGUAGE:CXX>:-fsanitize=undefined -fno-sanitize=vptr -fsanitize-undefined-trap-on-error>)
        # The fuzzer puts a block of any size right in front of a page that can't be read.
        if(VEKLIB_FUZZ)
            target_compile_options(veklib_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fno-sanitize=alignment>)
        endif()
    endif()
    target_compile_definitions(veklib_options INTERFACE VEKLIB_GUARD)
endif()
