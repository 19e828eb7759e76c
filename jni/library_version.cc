// Tells Java the version of the library, so that classes of another one are refused.
#include "jni/native_methods.h"

jstring Java_lumigram_jni_LibraryLoader_libraryVersion(JNIEnv* env, jclass) {
  return env->NewStringUTF(LUMIGRAM_VERSION);
}
