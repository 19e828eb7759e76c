// Tells Java why a picture cannot be read or written, and of which kind bytes are.
#include "core/file/obstacle.h"

#include <string.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/file/signature.h"
#include "jni/java_text.h"
#include "jni/native_methods.h"
#include "jni/scoped_jni.h"

namespace lumigram {
namespace {

// strerror_r() has two forms: one fills the buffer, the other may return a text of its own.
[[maybe_unused]] const char* ErrorWords(int, const char* buffer) { return buffer; }
[[maybe_unused]] const char* ErrorWords(const char* words, const char*) { return words; }

// Copies the first bytes of an array, as many as there are. Returns their number; 0 after a failure.
size_t CopyHead(JNIEnv* env, jbyteArray array, char (&head)[kObstacleHead]) {
  const jsize size = std::min<jsize>(LengthOf(env, array), kObstacleHead);
  if (size <= 0) return 0;
  env->GetByteArrayRegion(array, 0, size, reinterpret_cast<jbyte*>(head));
  return ClearException(env) ? 0 : static_cast<size_t>(size);
}

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

jint Java_lumigram_jni_LumigramBytes_findObstacle(JNIEnv* env, jclass, jbyteArray bytes, jint type,
                                                  jobjectArray words) {
  char head[kObstacleHead], found[kObstacleWords];
  const size_t size = CopyHead(env, bytes, head);
  const Obstacle obstacle = FindObstacleInBytes({head, size}, type, found);
  if (LengthOf(env, words) > 0) (void)StoreJavaString(env, words, 0, found);
  return static_cast<jint>(obstacle);
}

jint Java_lumigram_jni_LumigramBytes_findKind(JNIEnv* env, jclass, jbyteArray bytes) {
  char head[kObstacleHead];
  const size_t size = CopyHead(env, bytes, head);
  const auto kind = KindFromSignature({reinterpret_cast<const uint8_t*>(head), size});
  return kind ? static_cast<jint>(*kind) : jint{kFileTypeUnknown};
}
