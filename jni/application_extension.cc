// Hands the bytes of one blob of a picture to Java.
#include <string.h>

#include "core/gif/gif_blobs.h"
#include "core/png/png_blobs.h"
#include "jni/native_methods.h"
#include "jni/scoped_jni.h"

namespace lumigram {
namespace {

struct Blob {
  ScopedBlock<uint8_t> bytes;
  uint32_t length = 0;
};

// A blob has fewer bytes than its picture had when its size was taken. The picture may have grown
// since.
bool CopyBlob(const OpenPicture& picture, const char* label, const char* fileName, Blob* blob) {
  void* bytes = nullptr;
  const uint32_t capacity = GetMemory(picture.stream.get(), &bytes);
  blob->bytes.reset(static_cast<uint8_t*>(bytes));
  if (capacity == 0) return false;
  const auto copy = picture.type == kFileTypeGif ? CopyBlobFromGif : CopyBlobFromPng;
  return copy(picture.stream.get(), blob->bytes.get(), &blob->length, label, fileName, capacity) ==
         kOk;
}

// Java does not learn why there is no blob.
bool ReadBlob(JNIEnv* env, jstring path, jstring labelName, jstring fileName, Blob* blob) {
  OpenPicture picture;
  {
    const JavaText text(env, path);
    if (text.Get() == nullptr || picture.Open(text.Get()) != kOk) return false;
  }
  if (picture.type == kFileTypeJpeg) return false;  // which has no blobs
  const JavaText label(env, labelName);
  const JavaText name(env, fileName);
  if (label.Get() == nullptr || name.Get() == nullptr) return false;
  return CopyBlob(picture, label.Get(), name.Get(), blob);
}

jbyteArray NewArrayOf(JNIEnv* env, const Blob& blob) {
  LocalRef<jbyteArray> array(env, env->NewByteArray(static_cast<jsize>(blob.length)));
  if (array.Get() == nullptr) return nullptr;
  JavaBytes elements(env, array.Get(), JavaBytes::kCopyBack);
  if (elements.Get() == nullptr) return nullptr;
  memcpy(elements.Get(), blob.bytes.get(), blob.length);
  return array.Release();
}

}  // namespace
}  // namespace lumigram

using namespace lumigram;

jbyteArray Java_lumigram_jni_LumigramJni_getLumigramApplicationExtensionInfo(JNIEnv* env, jclass,
                                                                             jstring path,
                                                                             jstring labelName,
                                                                             jstring fileName) {
  Blob blob;
  if (!ReadBlob(env, path, labelName, fileName, &blob) || blob.length == 0) return nullptr;
  return NewArrayOf(env, blob);
}
