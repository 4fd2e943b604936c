# 32-bit Windows, the product's first target.
set(CMAKE_SYSTEM_PROCESSOR i686)
# SSE2: x87 registers keep excess precision, and a value "narrowed to float" would not be.
# Stack realignment: the 32-bit Windows ABI promises 4 bytes, GCC's SSE spills need 16.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-common.cmake)
