# Cross build for the 32-bit ARM (hard-float) management controller:
#   cmake -S . -B build-arm -DCMAKE_TOOLCHAIN_FILE=cmake/arm-linux-gnueabihf.cmake
# Needs Debian's g++-arm-linux-gnueabihf; tests run under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(ZENTREL_ARM_TRIPLE arm-linux-gnueabihf)
set(CMAKE_C_COMPILER ${ZENTREL_ARM_TRIPLE}-gcc)
set(CMAKE_CXX_COMPILER ${ZENTREL_ARM_TRIPLE}-g++)
set(ZENTREL_ARM_SYSROOT /usr/${ZENTREL_ARM_TRIPLE})

set(CMAKE_FIND_ROOT_PATH ${ZENTREL_ARM_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Test programs run under user-mode emulation with the target's libraries.
find_program(ZENTREL_QEMU_ARM qemu-arm)
if(ZENTREL_QEMU_ARM)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${ZENTREL_QEMU_ARM} -L ${ZENTREL_ARM_SYSROOT})
endif()
