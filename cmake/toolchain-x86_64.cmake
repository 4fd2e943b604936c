# 64-bit Windows, built from the same sources.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-common.cmake)
