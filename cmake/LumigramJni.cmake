# Where jni.h is. CMake's own module wants a full JDK with its graphical parts, which a headless machine has not; the
# header stands beside the compiler. An Android toolchain brings its own.
add_library(lumigram_jni_headers INTERFACE)
if(NOT ANDROID)
  find_program(LUMIGRAM_JAVAC javac REQUIRED)
  file(REAL_PATH ${LUMIGRAM_JAVAC} javac_path)
  get_filename_component(jdk_bin ${javac_path} DIRECTORY)
  find_path(LUMIGRAM_JNI_INCLUDE jni.h HINTS ${jdk_bin}/../include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  target_include_directories(lumigram_jni_headers SYSTEM INTERFACE ${LUMIGRAM_JNI_INCLUDE} ${LUMIGRAM_JNI_INCLUDE}/linux)
endif()
