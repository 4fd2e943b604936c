# 64-bit Windows with Microsoft's C++ ABI.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-msvc-common.cmake)
