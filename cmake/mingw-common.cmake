# Shared by the two cross toolchains. The posix thread model carries std::mutex and std::thread.
set(CMAKE_CXX_COMPILER ${AV_TRIPLET}-g++-posix)
set(CMAKE_C_COMPILER ${AV_TRIPLET}-gcc-posix)  # GoogleTest asks for one
set(CMAKE_RC_COMPILER ${AV_TRIPLET}-windres)
set(CMAKE_STRIP ${AV_TRIPLET}-strip)
set(CMAKE_FIND_ROOT_PATH /usr/${AV_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# Nothing beside the DLL: libstdc++, libgcc and winpthreads are linked in.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/wine-run;${AV_ARCH})
