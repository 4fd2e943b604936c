# Shared by the two toolchain files for Microsoft's C++ ABI without Microsoft's tools: clang-cl and lld-link over what
# "tools/setup.sh --msvc" makes. On Windows use Visual Studio itself:
#     cmake -G "Visual Studio 17 2022" -A Win32
set(CMAKE_SYSTEM_NAME Windows)

if(NOT VEKLIB_MSVC_SDK)
    execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../tools/setup.sh --where
        OUTPUT_VARIABLE VEKLIB_MSVC_SDK OUTPUT_STRIP_TRAILING_WHITESPACE)
    string(APPEND VEKLIB_MSVC_SDK /msvc-sdk-${CMAKE_SYSTEM_PROCESSOR})
endif()
if(NOT EXISTS ${VEKLIB_MSVC_SDK}/bin/clang-cl)
    message(FATAL_ERROR "${VEKLIB_MSVC_SDK} is missing: tools/setup.sh --msvc makes it")
endif()
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VEKLIB_MSVC_SDK)

set(llvm /usr/lib/llvm-19/bin)
set(CMAKE_C_COMPILER ${VEKLIB_MSVC_SDK}/bin/clang-cl)
set(CMAKE_CXX_COMPILER ${VEKLIB_MSVC_SDK}/bin/clang-cl)
set(CMAKE_LINKER ${llvm}/lld-link)
set(CMAKE_AR ${llvm}/llvm-lib)
set(CMAKE_RC_COMPILER ${llvm}/llvm-rc)
set(CMAKE_MT ${llvm}/llvm-mt)
set(CMAKE_OBJDUMP ${llvm}/llvm-objdump)

set(CMAKE_RC_FLAGS_INIT "-I /usr/include/wine/wine/windows")
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "/manifest:no /libpath:${VEKLIB_MSVC_SDK}/lib")
endforeach()
# There is no debugging runtime here.
set(CMAKE_MSVC_RUNTIME_LIBRARY MultiThreaded)

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/wine-run)
