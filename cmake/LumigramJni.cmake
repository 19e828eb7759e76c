# Finds jni.h. CMake's own module requires a full JDK with its graphical libraries, which a headless JDK lacks; so we look
# beside javac, and then where Debian has Android's jni.h, which is enough for the library. An Android toolchain has its own.
add_library(lumigram_jni_headers INTERFACE)
if(ANDROID)
  return()
endif()

find_program(LUMIGRAM_JAVAC javac)
set(jdk_include)
if(LUMIGRAM_JAVAC)
  file(REAL_PATH ${LUMIGRAM_JAVAC} javac_path)
  get_filename_component(jdk_bin ${javac_path} DIRECTORY)
  set(jdk_include ${jdk_bin}/../include)
elseif(LUMIGRAM_JAR AND NOT CMAKE_CROSSCOMPILING)
  message(FATAL_ERROR "There is no javac, which the Java classes need. Install a JDK (Debian: default-jdk-headless), or "
    "configure with -DLUMIGRAM_JAR=OFF.")
endif()
find_path(LUMIGRAM_JNI_INCLUDE jni.h HINTS ${jdk_include} PATHS /usr/include/android/nativehelper NO_CMAKE_FIND_ROOT_PATH)
if(NOT EXISTS "${LUMIGRAM_JNI_INCLUDE}/jni.h")
  message(FATAL_ERROR "There is no jni.h. Install a JDK (Debian: default-jdk-headless), or name the folder that has it with "
    "-DLUMIGRAM_JNI_INCLUDE=, or install Debian's android-libnativehelper-dev.")
endif()
target_include_directories(lumigram_jni_headers SYSTEM INTERFACE ${LUMIGRAM_JNI_INCLUDE} ${LUMIGRAM_JNI_INCLUDE}/linux)
