// Delivers the bytes of one blob of a picture to Java.
#include "core/file/blobs.h"
#include "core/file/picture_file.h"
#include "jni/lent_bytes.h"
#include "jni/native_methods.h"
#include "jni/scoped_jni.h"

namespace lumigram {
namespace {

struct Blob {
  ScopedBlock<uint8_t> bytes;
  uint32_t length = 0;
};

// A blob has fewer bytes than its picture, so the size of the picture is enough. Returns kNoBlob also
// for a picture of a kind that carries none.
Status CopyBlob(ByteSource& source, Kind kind, int32_t size, const WantedBlob& wanted, Blob* blob) {
  const BlobFunctions* const functions = BlobFunctionsOf(kind);
  if (functions == nullptr) return kNoBlob;
  blob->bytes.reset(static_cast<uint8_t*>(malloc(static_cast<size_t>(size) + 1)));
  if (blob->bytes == nullptr) return kNoRoom;
  OutputBuffer data(blob->bytes.get(), static_cast<uint32_t>(size));
  return functions->copy(source, wanted, &data, &blob->length);
}

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
  int32_t size = 0;
  if (Status s = picture.GetSize(&size); s != kOk) return s;
  ByteSource source = picture.Source();
  return CopyBlob(source, picture.GetKind(), size, {label.Get(), name.Get()}, blob);
}

jbyteArray NewArrayOf(JNIEnv* env, const Blob& blob) {
  return NewByteArrayOf(env, {blob.bytes.get(), blob.length});
}

// Returns a new array after kOk, else null, and stores the status.
jbyteArray Deliver(JNIEnv* env, int32_t code, const Blob& blob, jintArray status) {
  const jbyteArray bytes = code == kOk ? NewArrayOf(env, blob) : nullptr;
  const jint stored = code == kOk && bytes == nullptr ? kNoRoom : code;
  if (status != nullptr) env->SetIntArrayRegion(status, 0, 1, &stored);
  ClearException(env);
  return bytes;
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
  const Status code = ReadBlob(env, path, &PictureFile::OpenReady, labelName, fileName, &blob);
  return Deliver(env, code, blob, status);
}

jbyteArray Java_lumigram_jni_LumigramBytes_readBlob(JNIEnv* env, jclass, jbyteArray bytes,
                                                    jint type, jstring labelName, jstring fileName,
                                                    jintArray status) {
  Blob blob;
  int32_t code = kNullArgument;
  {
    const std::optional<Kind> kind = KindOf(type);
    const JavaText label(env, labelName);
    const JavaText name(env, fileName);
    jsize length = 0;
    if (!kind) {
      code = kUnsupported;
    } else if (label.Get() != nullptr && name.Get() != nullptr) {
      code = UseBytes(env, bytes, &length, [&](ByteSource& source) {
        return CopyBlob(source, *kind, length, {label.Get(), name.Get()}, &blob);
      });
    }
  }
  return Deliver(env, code, blob, status);
}
