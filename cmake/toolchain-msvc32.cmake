# 32-bit Windows with Microsoft's C++ ABI.
set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-msvc-common.cmake)
