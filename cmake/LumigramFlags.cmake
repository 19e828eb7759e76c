# Compiler flags, as two interface targets: for everything we compile, and for what goes into the library.
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

add_library(lumigram_flags INTERFACE)
target_compile_options(lumigram_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow $<$<COMPILE_LANGUAGE:CXX>:-Wconversion> -Wno-sign-conversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION MATCHES "^12\\.")
  # False alarms for "literal" + std::string, depending on what is inlined: GCC bug 105651.
  target_compile_options(lumigram_flags INTERFACE -Wno-restrict)
endif()
# An error only where the tree is known to be clean: another compiler's or another C library's warning must not stop a
# user's build.
if(NOT ANDROID AND ((CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION MATCHES "^12\\.") OR
   (CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND CMAKE_CXX_COMPILER_VERSION MATCHES "^14\\.")))
  target_compile_options(lumigram_flags INTERFACE -Werror)
endif()

# Files over 2 GiB must open, if only to be refused, on 32-bit machines too. Bionic's file sizes are 64-bit as they are.
if(NOT ANDROID)
  target_compile_definitions(lumigram_flags INTERFACE _FILE_OFFSET_BITS=64)
endif()

add_library(lumigram_library_flags INTERFACE)
target_compile_options(lumigram_library_flags INTERFACE
  -fvisibility=hidden -ffunction-sections -fdata-sections
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions> $<$<COMPILE_LANGUAGE:CXX>:-fno-rtti>
  $<$<COMPILE_LANGUAGE:CXX>:-fno-threadsafe-statics>)

if(LUMIGRAM_SANITIZE)
  add_compile_options(-fsanitize=${LUMIGRAM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${LUMIGRAM_SANITIZE})
endif()
if(LUMIGRAM_SANITIZE_LIBRARY)
  target_compile_options(lumigram_library_flags INTERFACE -fsanitize=${LUMIGRAM_SANITIZE_LIBRARY})
endif()
