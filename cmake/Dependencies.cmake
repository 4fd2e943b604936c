# Everything from outside: expat (wide, static), GoogleTest, the command line parser's header.
#
# tools/setup.sh puts all of it into one private folder (VEKLIB_DEPS). Elsewhere expat and GoogleTest come from their
# upstream releases, or from FETCHCONTENT_SOURCE_DIR_EXPAT and FETCHCONTENT_SOURCE_DIR_GOOGLETEST.
include(FetchContent)

if(NOT DEFINED VEKLIB_DEPS)
    execute_process(COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/tools/setup.sh --where
        OUTPUT_VARIABLE veklib_deps OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE status)
    set(VEKLIB_DEPS "${veklib_deps}" CACHE PATH "Folder that tools/setup.sh has filled")
endif()
# What stands there has to be found even where a host's toolchain file confines looking to a root of its own.
set(veklib_arch ${CMAKE_SYSTEM_PROCESSOR})
if(MSVC)
    string(APPEND veklib_arch -msvc)
endif()

# --- expat ---
# Its own test vectors hang older versions in the wide configuration.
find_package(expat 2.8.3 CONFIG QUIET PATHS ${VEKLIB_DEPS}/expat-${veklib_arch} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
if(NOT expat_FOUND)
    message(STATUS "expat: building it here")
    set(EXPAT_CHAR_TYPE wchar_t CACHE STRING "" FORCE)
    set(EXPAT_CONTEXT_BYTES 0 CACHE STRING "" FORCE)
    set(EXPAT_SHARED_LIBS OFF CACHE BOOL "" FORCE)
    set(EXPAT_ENABLE_INSTALL OFF CACHE BOOL "" FORCE)
    if(CMAKE_MSVC_RUNTIME_LIBRARY MATCHES "DLL$")
        set(EXPAT_MSVC_STATIC_CRT OFF CACHE BOOL "" FORCE)
    else()
        set(EXPAT_MSVC_STATIC_CRT ON CACHE BOOL "" FORCE)
    endif()
    foreach(part TOOLS TESTS EXAMPLES DOCS)
        set(EXPAT_BUILD_${part} OFF CACHE BOOL "" FORCE)
    endforeach()
    FetchContent_Declare(expat
        URL https://github.com/libexpat/libexpat/releases/download/R_2_8_3/expat-2.8.3.tar.gz)
    FetchContent_MakeAvailable(expat)
    if(NOT TARGET expat::expat)
        add_library(expat::expat ALIAS expat)
    endif()
endif()

add_library(veklib_expat INTERFACE)
target_link_libraries(veklib_expat INTERFACE expat::expat)
target_compile_definitions(veklib_expat INTERFACE XML_UNICODE_WCHAR_T XML_STATIC)

# --- GoogleTest ---
if(VEKLIB_TESTS)
    find_package(GTest CONFIG QUIET PATHS ${VEKLIB_DEPS}/gtest-${veklib_arch} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
    if(NOT GTest_FOUND)
        message(STATUS "GoogleTest: building it here")
        set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
        if(EXISTS /usr/src/googletest/CMakeLists.txt AND NOT FETCHCONTENT_SOURCE_DIR_GOOGLETEST)
            set(FETCHCONTENT_SOURCE_DIR_GOOGLETEST /usr/src/googletest)
        endif()
        FetchContent_Declare(googletest
            URL https://github.com/google/googletest/archive/refs/tags/release-1.12.1.tar.gz)
        FetchContent_MakeAvailable(googletest)
        if(NOT TARGET GTest::gmock)
            add_library(GTest::gmock ALIAS gmock)
            add_library(GTest::gtest ALIAS gtest)
        endif()
    endif()
endif()

# --- command line parser, for the programs only ---
# Only its own folder may come from the build host: the host's C headers beside it are not for the target.
set(cli11 ${VEKLIB_DEPS}/cli11/include)
if(NOT EXISTS ${cli11}/CLI/CLI.hpp AND EXISTS /usr/include/CLI/CLI.hpp)
    set(cli11 ${CMAKE_BINARY_DIR}/_deps/cli11)
    file(COPY /usr/include/CLI DESTINATION ${cli11})
endif()
if(EXISTS ${cli11}/CLI/CLI.hpp)
    add_library(veklib_cli11 INTERFACE)
    target_include_directories(veklib_cli11 SYSTEM INTERFACE ${cli11})
else()
    find_package(CLI11 CONFIG QUIET)
    if(CLI11_FOUND)
        add_library(veklib_cli11 INTERFACE)
        target_link_libraries(veklib_cli11 INTERFACE CLI11::CLI11)
    elseif(VEKLIB_APPS)
        message(FATAL_ERROR "The programs need the command line parser CLI11: install it, or set VEKLIB_APPS=OFF")
    endif()
endif()
