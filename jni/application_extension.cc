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

// A blob has fewer bytes than its picture, so the size of the picture is enough.
Status CopyBlob(const PictureFile& picture, const WantedBlob& wanted, Blob* blob) {
  const BlobFunctions* const functions = BlobFunctionsOf(picture.GetKind());
  if (functions == nullptr) return kNoBlob;
  int32_t size = 0;
  if (Status s = picture.GetSize(&size); s != kOk) return s;
  blob->bytes.reset(static_cast<uint8_t*>(malloc(static_cast<size_t>(size) + 1)));
  if (blob->bytes == nullptr) return kNoRoom;
  ByteSource source = picture.Source();
  OutputBuffer data(blob->bytes.get(), static_cast<uint32_t>(size));
  return functions->copy(source, wanted, &data, &blob->length);
}

// Returns kNoBlob also for a picture of a kind that carries none.
Status ReadBlob(JNIEnv* env, jstring path, Status (PictureFile::*open)(const char* path),
                jstring labelName, jstring fileName, Blob* blob) {
  PictureFile picture;
  {
    const JavaText text(env, path);
    if (text.Get() == nullptr) return kNullArgument;
    if (Status s = (picture.*open)(text.Get()); s != kOk) return s;
  }
  const JavaText label(env, labelName);
  const JavaText name(env, fileName);
  if (label.Get() == nullptr || name.Get() == nullptr) return kNullArgument;
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
  const Status status = ReadBlob(env, path, &PictureFile::Open, labelName, fileName, &blob);
  return status != kOk || blob.length == 0 ? nullptr : NewArrayOf(env, blob);
}

jbyteArray Java_lumigram_jni_LumigramFiles_readBlob(JNIEnv* env, jclass, jstring path,
                                                    jstring labelName, jstring fileName,
                                                    jintArray status) {
  Blob blob;
  jint code = ReadBlob(env, path, &PictureFile::OpenReady, labelName, fileName, &blob);
  jbyteArray bytes = nullptr;
  if (code == kOk) {
    bytes = NewArrayOf(env, blob);
    if (bytes == nullptr) code = kNoRoom;
  }
  if (status != nullptr) env->SetIntArrayRegion(status, 0, 1, &code);
  ClearException(env);
  return bytes;
}
