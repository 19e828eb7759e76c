# Compiler flags, as two interface targets: for all code, and for the code of the library.
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
# Warnings are errors only with the compilers that we test with: a warning of another compiler or C library must not stop a
# user's build.
if(NOT ANDROID AND ((CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION MATCHES "^12\\.") OR
   (CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND CMAKE_CXX_COMPILER_VERSION MATCHES "^14\\.")))
  target_compile_options(lumigram_flags INTERFACE -Werror)
endif()

# On 32-bit machines, too, files over 2 GiB must open, so that we can refuse them. Android's file sizes always have 64 bits.
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
