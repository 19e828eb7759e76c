#include "jni/lent_bytes.h"

#include <algorithm>

namespace lumigram {

Status BlobCopies::Take(JNIEnv* env, jobjectArray arrays) {
  const jsize count = std::min<jsize>(LengthOf(env, arrays), kLumigramMaxTags);
  int64_t total = 0;
  for (jsize i = 0; i < count; ++i) {
    const LocalRef<jbyteArray> array(env, env->GetObjectArrayElement(arrays, i));
    if (array.Failed()) return kBadField;
    if (array.Get() == nullptr) continue;
    const jsize length = LengthOf(env, array.Get());
    if (length < 0) return kBadField;
    total += length;
    if (total > kLumigramMaxPictureBytes) return kPictureTooLarge;
    const size_t size = static_cast<size_t>(length);
    blocks_[i].reset(static_cast<uint8_t*>(malloc(size + 1)));
    if (blocks_[i] == nullptr) return kNoRoom;
    env->GetByteArrayRegion(array.Get(), 0, length, reinterpret_cast<jbyte*>(blocks_[i].get()));
    if (ClearException(env)) return kBadField;
    blobs_[i] = {blocks_[i].get(), size};
  }
  return count < 0 ? kBadField : kOk;
}

jbyteArray NewByteArrayOf(JNIEnv* env, std::span<const uint8_t> bytes) {
  const jsize length = static_cast<jsize>(bytes.size());
  LocalRef<jbyteArray> array(env, env->NewByteArray(length));
  if (array.Get() == nullptr) return nullptr;
  env->SetByteArrayRegion(array.Get(), 0, length, reinterpret_cast<const jbyte*>(bytes.data()));
  return ClearException(env) ? nullptr : array.Release();
}

}  // namespace lumigram
