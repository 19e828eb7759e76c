// Reads the metadata of a batch of pictures into Java attribute objects.
#include <unistd.h>

#include "core/file/extraction.h"
#include "core/file/picture_file.h"
#include "jni/batch_read.h"
#include "jni/lent_bytes.h"
#include "jni/native_methods.h"

namespace lumigram {
namespace {

constexpr int kMeasurements = 5;  // of an empty file, one second apart

// Gives the program that is still writing the file time to finish.
bool WaitForSize(const PictureFile& picture, int32_t* size) {
  for (int i = 0; i < kMeasurements; ++i) {
    if (picture.GetSize(size) == kOk && *size > 0) return true;
    sleep(1);
  }
  return false;
}

Status OpenAndWait(const char* path, PictureFile* picture, int32_t* size) {
  if (Status s = picture->Open(path); s != kOk) return s;
  return WaitForSize(*picture, size) && *size <= kLumigramMaxPictureBytes ? kOk : kBadStream;
}

Status OpenAtOnce(const char* path, PictureFile* picture, int32_t* size) {
  if (Status s = picture->OpenReady(path); s != kOk) return s;
  return picture->GetSize(size);
}

// The fingerprint may be null.
template <typename Open>
TakenPicture TakeFile(JNIEnv* env, jobjectArray paths, jsize i, Open open, char* document,
                      Fingerprint* fingerprint) {
  TakenPicture taken;
  PictureFile picture;
  {
    const LocalRef<jstring> path(env, env->GetObjectArrayElement(paths, i));
    const JavaText text(env, path.Get());
    if (text.Get() == nullptr) return taken;
    taken.status = open(text.Get(), &picture, &taken.facts.size);
  }
  if (taken.status != kOk) return taken;
  taken.isOpened = true;
  taken.status = picture.ReadDocument(taken.OutputsTo(document, fingerprint));
  return taken;
}

// Stores the two numbers of picture i. False when the array is too short for them.
bool StoreFingerprint(JNIEnv* env, jlongArray fingerprints, jsize i, const Fingerprint& taken) {
  const FingerprintValue value = taken.Value();
  const jlong numbers[] = {value.high, value.low};
  env->SetLongArrayRegion(fingerprints, 2 * i, 2, numbers);
  return !ClearException(env);
}

TakenPicture TakeBytes(JNIEnv* env, jobjectArray pictures, jsize i, FileType type, char* document,
                       Fingerprint* fingerprint) {
  TakenPicture taken;
  const std::optional<Kind> kind = KindOf(type);
  const LocalRef<jbyteArray> bytes(env, env->GetObjectArrayElement(pictures, i));
  if (bytes.Get() == nullptr) return taken;
  jsize length = 0;
  const int32_t status = UseBytes(env, bytes.Get(), &length, [&](ByteSource& source) -> int32_t {
    if (!kind) return kUnsupported;
    taken.isOpened = true;
    return ExtractDocument(source, *kind, taken.OutputsTo(document, fingerprint));
  });
  taken.status = static_cast<Status>(status);
  taken.facts.size = length;
  return taken;
}

// Reads a batch with fingerprints. take(i, document, &fingerprint) reads picture i.
template <typename Take>
Status ReadWithFingerprints(JNIEnv* env, jobjectArray pictures, jobjectArray attrs,
                            jlongArray fingerprints, jbyteArray results, Take take) {
  if (attrs == nullptr || pictures == nullptr || fingerprints == nullptr || results == nullptr)
    return kNullArgument;
  const auto takeAndStore = [&](jsize i, char* document) {
    Fingerprint fingerprint;
    TakenPicture taken = take(i, document, &fingerprint);
    if (taken.isOpened && !StoreFingerprint(env, fingerprints, i, fingerprint))
      taken.status = kBadField;
    return taken;
  };
  return ReadBatch(env, LengthOf(env, pictures), attrs, results, AttributeObject::TagRule::kBoth,
                   takeAndStore);
}

}  // namespace
}  // namespace lumigram

using namespace lumigram;

jint Java_lumigram_jni_LumigramJni_getLumigramAttrInfo(JNIEnv* env, jclass, jobjectArray paths,
                                                       jobjectArray attrs, jbyteArray results) {
  if (attrs == nullptr || paths == nullptr || results == nullptr) return kNullArgument;
  return ReadBatch(env, LengthOf(env, paths), attrs, results,
                   AttributeObject::TagRule::kEachByItsFirst, [&](jsize i, char* document) {
                     return TakeFile(env, paths, i, OpenAndWait, document, nullptr);
                   });
}

jint Java_lumigram_jni_LumigramFiles_readPictures(JNIEnv* env, jclass, jobjectArray paths,
                                                  jobjectArray attrs, jlongArray fingerprints,
                                                  jbyteArray results) {
  return ReadWithFingerprints(env, paths, attrs, fingerprints, results,
                              [&](jsize i, char* document, Fingerprint* fingerprint) {
                                return TakeFile(env, paths, i, OpenAtOnce, document, fingerprint);
                              });
}

jint Java_lumigram_jni_LumigramBytes_readPictures(JNIEnv* env, jclass, jobjectArray pictures,
                                                  jbyteArray kinds, jobjectArray attrs,
                                                  jlongArray fingerprints, jbyteArray results) {
  const JavaBytes types(env, kinds, JavaBytes::kDiscard);
  if (types.Get() == nullptr) return kNullArgument;
  const jsize known = LengthOf(env, kinds);
  return ReadWithFingerprints(env, pictures, attrs, fingerprints, results,
                              [&](jsize i, char* document, Fingerprint* fingerprint) {
                                const FileType type =
                                    i < known ? types.Get()[i] : FileType{kFileTypeUnknown};
                                return TakeBytes(env, pictures, i, type, document, fingerprint);
                              });
}
