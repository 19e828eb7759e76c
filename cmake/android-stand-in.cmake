# Replaces the NDK's toolchain file if there is no NDK: armeabi-v7a, API level 21, with Debian's Clang, LLVM's C++ library and
# linker, Android's own jni.h, and the headers of Debian's C library for 32-bit ARM. We link with a stub C library made from
# android-libc.txt, so that a use of any other function is a link error. The result has the ELF layout of an Android library,
# but cannot run, because structures of Android's C library have other layouts.
set(CMAKE_SYSTEM_NAME Android)
set(CMAKE_SYSTEM_VERSION 1)  # as in the NDK's file: CMake must not search for an NDK
set(CMAKE_SYSTEM_PROCESSOR armv7-a)
set(ANDROID TRUE)
set(ANDROID_ABI armeabi-v7a)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET armv7-none-linux-androideabi21)
set(CMAKE_CXX_COMPILER_TARGET ${CMAKE_C_COMPILER_TARGET})
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# Makes libraries without code. "compiler" replaces the library that the NDK's compiler links statically.
set(stand_in ${CMAKE_BINARY_DIR}/android-stand-in)
function(lumigram_stub name)
  list(TRANSFORM ARGN REPLACE "(.+)" ".globl \\1\n.type \\1,%function\n\\1:\n" OUTPUT_VARIABLE lines)
  string(JOIN "" source ${lines})
  file(WRITE ${stand_in}/${name}.s "${source}")
  execute_process(COMMAND clang --target=${CMAKE_C_COMPILER_TARGET} -c ${name}.s -o ${name}.o
    COMMAND_ERROR_IS_FATAL ANY WORKING_DIRECTORY ${stand_in})
  execute_process(COMMAND ld.lld -shared -soname ${name}.so ${name}.o -o ${name}.so
    COMMAND_ERROR_IS_FATAL ANY WORKING_DIRECTORY ${stand_in})
endfunction()
if(NOT EXISTS ${stand_in}/libdl.so)
  file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/android-libc.txt symbols REGEX "^[a-z_]")
  lumigram_stub(compiler __aeabi_ldivmod __aeabi_uldivmod __aeabi_idiv __aeabi_idivmod __aeabi_uidiv __aeabi_uidivmod
    __aeabi_unwind_cpp_pr0 __aeabi_unwind_cpp_pr1)
  lumigram_stub(libc ${symbols} __aeabi_memcpy __aeabi_memmove __aeabi_memset __aeabi_memclr __aeabi_memcpy4
    __aeabi_memmove4 __aeabi_memset4 __aeabi_memclr4 __aeabi_memcpy8 __aeabi_memmove8 __aeabi_memset8 __aeabi_memclr8)
  lumigram_stub(libm sin)
  lumigram_stub(libdl dlopen)
  file(WRITE ${stand_in}/include/gnu/stubs-soft.h "")  # Debian's headers have only the file for hardware floating point
endif()

set(flags "-mthumb -fstack-protector-strong -D_FORTIFY_SOURCE=2 -Werror -nostdlibinc -D__errno_location=__errno")
foreach(folder ${stand_in}/include /usr/include/android/nativehelper /usr/arm-linux-gnueabihf/include)
  string(APPEND c_folders " -isystem ${folder}")
endforeach()
set(CMAKE_C_FLAGS_INIT "${flags}${c_folders}")
set(CMAKE_CXX_FLAGS_INIT "${flags} -nostdinc++ -isystem /usr/lib/llvm-14/include/c++/v1${c_folders}")
# As with the NDK: linker warnings are errors, and the mathematical library is always given.
set(CMAKE_SHARED_LINKER_FLAGS_INIT
  "-fuse-ld=lld -nostdlib -L${stand_in} -Qunused-arguments -Wl,--no-undefined -Wl,--fatal-warnings")
set(CMAKE_C_STANDARD_LIBRARIES "${stand_in}/compiler.o -lm -lc -ldl")
set(CMAKE_CXX_STANDARD_LIBRARIES "${CMAKE_C_STANDARD_LIBRARIES}")
