// Tells Java why a picture cannot be read or written.
#include "core/file/obstacle.h"

#include <string.h>

#include "core/base/text.h"
#include "jni/java_text.h"
#include "jni/native_methods.h"
#include "jni/scoped_jni.h"

namespace lumigram {
namespace {

// strerror_r() has two forms: one fills the buffer, the other may return a text of its own.
[[maybe_unused]] const char* ErrorWords(int, const char* buffer) { return buffer; }
[[maybe_unused]] const char* ErrorWords(const char* words, const char*) { return words; }

}  // namespace
}  // namespace lumigram

using namespace lumigram;

jint Java_lumigram_jni_LumigramFiles_findObstacle(JNIEnv* env, jclass, jstring path,
                                                  jboolean isWriting, jint error,
                                                  jobjectArray words) {
  const JavaText text(env, path);
  if (text.Get() == nullptr || LengthOf(env, words) < 1) return 0;
  char found[kObstacleWords];
  const Access access = isWriting ? Access::kWrite : Access::kRead;
  const Obstacle obstacle = FindObstacle(text.Get(), access, found);
  if (obstacle == Obstacle::kNone && error != 0) {
    char buffer[kObstacleWords] = {};
    CopyText(found, ErrorWords(strerror_r(error, buffer, sizeof buffer), buffer));
  }
  (void)StoreJavaString(env, words, 0, found);
  return static_cast<jint>(obstacle);
}
