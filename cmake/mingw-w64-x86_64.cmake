# Cross-compiles for 64-bit Windows with Debian's mingw-w64 (posix thread model, so that
# std::thread and std::mutex work) and runs what it builds under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(TARN_MINGW_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${TARN_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TARN_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${TARN_MINGW_TRIPLE}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${TARN_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The compiler's runtime goes into each binary: no libstdc++, libgcc or winpthread DLL to ship.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")

# The 64-bit loader itself: Debian's `wine` wrapper would print a hint about 32-bit Wine each run.
# Building needs no Wine; without it the tests build but cannot run.
find_program(TARN_WINE NAMES wine64 wine HINTS /usr/lib/wine)
if(TARN_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${TARN_WINE})
endif()
