// Delivers the bytes of one blob of a picture to Java.
#include <string.h>

#include "core/file/blobs.h"
#include "core/file/picture_file.h"
#include "jni/native_methods.h"
#include "jni/scoped_jni.h"

namespace lumigram {
namespace {

struct Blob {
  ScopedBlock<uint8_t> bytes;
  uint32_t length = 0;
};

// A blob has fewer bytes than its picture, so the size of the picture is enough. The status of a
// failure is not reported to Java.
bool CopyBlob(const PictureFile& picture, const WantedBlob& wanted, Blob* blob) {
  const BlobFunctions* const functions = BlobFunctionsOf(picture.GetKind());
  int32_t size = 0;
  if (functions == nullptr || picture.GetSize(&size) != kOk) return false;
  blob->bytes.reset(static_cast<uint8_t*>(malloc(static_cast<size_t>(size) + 1)));
  if (blob->bytes == nullptr) return false;
  ByteSource source = picture.Source();
  OutputBuffer data(blob->bytes.get(), static_cast<uint32_t>(size));
  return functions->copy(source, wanted, &data, &blob->length) == kOk;
}

bool ReadBlob(JNIEnv* env, jstring path, jstring labelName, jstring fileName, Blob* blob) {
  PictureFile picture;
  {
    const JavaText text(env, path);
    if (text.Get() == nullptr || picture.Open(text.Get()) != kOk) return false;
  }
  const JavaText label(env, labelName);
  const JavaText name(env, fileName);
  if (label.Get() == nullptr || name.Get() == nullptr) return false;
  return CopyBlob(picture, {label.Get(), name.Get()}, blob);
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
