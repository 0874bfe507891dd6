# 64-bit Windows, cross-built on Debian:  cmake --preset x64 && cmake --build --preset x64
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(AV_ARCH x64)
set(AV_TRIPLET x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
