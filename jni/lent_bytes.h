// Pictures and blobs in Java's byte arrays.
#ifndef LUMIGRAM_JNI_LENT_BYTES_H_
#define LUMIGRAM_JNI_LENT_BYTES_H_

#include <jni.h>

#include <span>

#include "core/base/byte_source.h"
#include "core/document/blob_entries.h"
#include "jni/scoped_jni.h"

namespace lumigram {

// The bytes of an array of known length, which the virtual machine lends without a copy where it
// can. Until the end of the scope no JNI function may be called, and nothing may wait, because the
// garbage collector may be stopped meanwhile. Another thread may change the bytes.
class LentBytes {
 public:
  LentBytes(JNIEnv* env, jbyteArray array, jsize length)
      : env_(env),
        array_(array),
        length_(length),
        bytes_(static_cast<uint8_t*>(env->GetPrimitiveArrayCritical(array, nullptr))) {
    if (bytes_ == nullptr) ClearException(env);
  }
  ~LentBytes() {
    if (bytes_ != nullptr) env_->ReleasePrimitiveArrayCritical(array_, bytes_, JNI_ABORT);
  }
  LentBytes(const LentBytes&) = delete;
  LentBytes& operator=(const LentBytes&) = delete;

  bool AreThere() const { return bytes_ != nullptr; }
  ByteSource Source() const {
    return ByteSource(std::span<const uint8_t>(bytes_, static_cast<size_t>(length_)));
  }

 private:
  JNIEnv* const env_;
  const jbyteArray array_;
  const jsize length_;
  uint8_t* const bytes_;
};

// Calls use(source) with the picture in an array, which may be null. Returns its status; kNullArgument;
// kNotReady for an array that is empty or over 2 MiB; kNoRoom. Stores the length of the array.
template <typename Use>
int32_t UseBytes(JNIEnv* env, jbyteArray array, jsize* length, Use use) {
  if (array == nullptr) return kNullArgument;
  *length = LengthOf(env, array);
  if (*length <= 0 || *length > kLumigramMaxPictureBytes) return kNotReady;
  const LentBytes bytes(env, array, *length);
  if (!bytes.AreThere()) return kNoRoom;
  ByteSource source = bytes.Source();
  return use(source);
}

// Copies of the blobs in an array of arrays, in which element i belongs to tag i and may be null.
class BlobCopies {
 public:
  // Returns kOk; kNoRoom; kBadField; kPictureTooLarge for more bytes than a picture has. A null array
  // has no blobs.
  Status Take(JNIEnv* env, jobjectArray arrays);
  // Blobs come from these copies only: no file is opened.
  NewBlobs Blobs() const { return {blobs_, kLumigramMaxTags, 0}; }

 private:
  BlobBytes blobs_[kLumigramMaxTags] = {};
  ScopedBlock<uint8_t> blocks_[kLumigramMaxTags];
};

// A new array with a copy of the bytes; null when there is no memory.
jbyteArray NewByteArrayOf(JNIEnv* env, std::span<const uint8_t> bytes);

}  // namespace lumigram

#endif  // LUMIGRAM_JNI_LENT_BYTES_H_
