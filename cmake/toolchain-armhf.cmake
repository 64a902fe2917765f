# 32-bit ARM with NEON, by Debian's cross compiler; tests run under qemu-arm.
#
# The target's libraries are searched in QPX_ARMHF_SYSROOT (a cache or environment variable), which
# scripts/armhf-sysroot.sh fills; the C and C++ runtimes come with the compiler.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)

set(triplet arm-linux-gnueabihf)
set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)

if(NOT QPX_ARMHF_SYSROOT)
  if(DEFINED ENV{QPX_ARMHF_SYSROOT})
    set(QPX_ARMHF_SYSROOT $ENV{QPX_ARMHF_SYSROOT})
  else()
    cmake_path(SET QPX_ARMHF_SYSROOT NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../build/armhf-sysroot)
  endif()
endif()
set(QPX_ARMHF_SYSROOT ${QPX_ARMHF_SYSROOT} CACHE PATH "Tree with Debian's armhf libraries")
if(NOT EXISTS ${QPX_ARMHF_SYSROOT}/usr/lib/${triplet})
  message(FATAL_ERROR "No armhf libraries in ${QPX_ARMHF_SYSROOT}: run scripts/armhf-sysroot.sh first")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QPX_ARMHF_SYSROOT)

# Highway's NEON code needs half floats in IEEE form. GCC's notes on an argument order that changed
# in its version 7 say nothing about this code.
set(machine_flags "-mfpu=neon -mfp16-format=ieee -Wno-psabi")
set(CMAKE_C_FLAGS_INIT ${machine_flags})
set(CMAKE_CXX_FLAGS_INIT ${machine_flags})

set(CMAKE_FIND_ROOT_PATH ${QPX_ARMHF_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()

# What the sysroot's libraries need from one another is found neither by the linker nor at run time
# without a word: libpng's zlib, for one, is in the other of the two directories.
set(library_dirs ${QPX_ARMHF_SYSROOT}/usr/lib/${triplet} ${QPX_ARMHF_SYSROOT}/lib/${triplet})
list(JOIN library_dirs ":" library_path)
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-Wl,-rpath-link,${library_path}")
endforeach()
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L /usr/${triplet} -E LD_LIBRARY_PATH=${library_path})
