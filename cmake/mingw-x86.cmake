# 32-bit Windows, cross-built on Debian:  cmake --preset x86 && cmake --build --preset x86
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(AV_ARCH x86)
set(AV_TRIPLET i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
# SSE2 arithmetic keeps 32-bit results the same as 64-bit ones; the x87 unit would round differently.
# Callbacks enter with a 4-byte aligned stack, SSE spills need 16.
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
