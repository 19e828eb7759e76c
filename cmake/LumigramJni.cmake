# Finds jni.h. CMake's own module requires a full JDK with its graphical libraries, which a headless JDK lacks; so we look
# beside javac. An Android toolchain has its own jni.h.
add_library(lumigram_jni_headers INTERFACE)
if(NOT ANDROID)
  find_program(LUMIGRAM_JAVAC javac REQUIRED)
  file(REAL_PATH ${LUMIGRAM_JAVAC} javac_path)
  get_filename_component(jdk_bin ${javac_path} DIRECTORY)
  find_path(LUMIGRAM_JNI_INCLUDE jni.h HINTS ${jdk_bin}/../include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  target_include_directories(lumigram_jni_headers SYSTEM INTERFACE ${LUMIGRAM_JNI_INCLUDE} ${LUMIGRAM_JNI_INCLUDE}/linux)
endif()
