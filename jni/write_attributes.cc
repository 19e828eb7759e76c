// Writes the metadata of a Java attribute object into a picture.
#include <algorithm>

#include "core/file/picture_file.h"
#include "core/write/rewrite.h"
#include "core/write/write_picture.h"
#include "jni/attribute_record.h"
#include "jni/lent_bytes.h"
#include "jni/native_methods.h"
#include "jni/scoped_jni.h"

namespace lumigram {
namespace {

// Java gets kTooLong (-41) for every failure of WritePicture().
Status Write(JNIEnv* env, jstring path, const AttrInfo& attr) {
  const JavaText text(env, path);
  if (text.Get() == nullptr) return kBadField;
  PictureFile picture;
  if (Status s = picture.Open(text.Get()); s != kOk) return s;
  ByteSource source = picture.Source();
  return WritePicture(source, text.Get(), attr, static_cast<FileType>(picture.GetKind())) == kOk
             ? kOk
             : kTooLong;
}

// What Java hands over for a write.
class Request {
 public:
  // Returns kOk, or the status of an object or array that cannot be used.
  Status Take(JNIEnv* env, jobject attr, jobjectArray newBlobs, jlongArray expected,
              jlongArray details) {
    // Nothing that follows the write may fail.
    if (LengthOf(env, details) < kUnreadKinds) return kBadArgument;
    if (Status s = TakeRecord(env, attr, &record_); s != kOk) return s;
    if (Status s = blobs_.Take(env, newBlobs); s != kOk) return s;
    isCompared_ = expected != nullptr;
    return isCompared_ ? TakeFingerprint(env, expected) : kOk;
  }

  RewriteRequest Get(jboolean replacesUnread) const {
    return {
        {*record_, blobs_.Blobs()}, isCompared_ ? &seen_ : nullptr, replacesUnread != JNI_FALSE};
  }

 private:
  Status TakeFingerprint(JNIEnv* env, jlongArray numbers) {
    jlong taken[2] = {};
    env->GetLongArrayRegion(numbers, 0, 2, taken);
    seen_ = {taken[0], taken[1]};
    return ClearException(env) ? kBadField : kOk;
  }

  ScopedBlock<AttrInfo> record_;
  BlobCopies blobs_;
  bool isCompared_ = false;
  FingerprintValue seen_;
};

// The numbers that go with a result; see the Java method.
void StoreDetails(JNIEnv* env, RewriteResult result, const RewriteReport& report,
                  jlongArray details) {
  jlong numbers[kUnreadKinds] = {};
  jsize count = 1;
  if (result == kRewritten) {
    numbers[0] = report.fingerprint.high;
    numbers[1] = report.fingerprint.low;
    numbers[2] = report.size;
    count = 3;
  } else if (result == kUnread) {
    count = kUnreadKinds;
    std::copy_n(report.unread, kUnreadKinds, numbers);
  } else {
    numbers[0] = result == kBlobMissing ? report.tagOfBlob : report.error;
  }
  env->SetLongArrayRegion(details, 0, count, numbers);
  ClearException(env);
}

}  // namespace
}  // namespace lumigram

using namespace lumigram;

jint Java_lumigram_jni_LumigramJni_setLumigramAttrInfo(JNIEnv* env, jclass, jstring path,
                                                       jobject attr) {
  if (path == nullptr || attr == nullptr) return kNullArgument;
  ScopedBlock<AttrInfo> record;
  if (Status s = TakeRecord(env, attr, &record); s != kOk) return s;
  return Write(env, path, *record);
}

jint Java_lumigram_jni_LumigramFiles_writePicture(JNIEnv* env, jclass, jstring path, jobject attr,
                                                  jobjectArray newBlobs, jlongArray expected,
                                                  jboolean replacesUnread, jlongArray details) {
  if (path == nullptr || attr == nullptr || details == nullptr) return kNullArgument;
  Request request;
  if (Status s = request.Take(env, attr, newBlobs, expected, details); s != kOk) return s;
  const JavaText text(env, path);
  if (text.Get() == nullptr) return kBadField;
  RewriteReport report = {};
  const RewriteResult result = RewriteFile(text.Get(), request.Get(replacesUnread), &report);
  StoreDetails(env, result, report, details);
  return result;
}

jint Java_lumigram_jni_LumigramBytes_writePicture(JNIEnv* env, jclass, jbyteArray bytes, jint type,
                                                  jobject attr, jobjectArray newBlobs,
                                                  jlongArray expected, jboolean replacesUnread,
                                                  jlongArray details, jobjectArray written) {
  if (bytes == nullptr || attr == nullptr || details == nullptr || written == nullptr)
    return kNullArgument;
  const std::optional<Kind> kind = KindOf(type);
  if (!kind) return kUnsupported;
  Request request;
  if (Status s = request.Take(env, attr, newBlobs, expected, details); s != kOk) return s;
  RewriteReport report = {};
  NewPicture picture;
  jsize length = 0;
  const RewriteResult result = UseBytes(env, bytes, &length, [&](ByteSource& source) {
    return BuildRewrite(source, *kind, request.Get(replacesUnread), &picture, &report);
  });
  if (result == kRewritten) {
    const LocalRef<jbyteArray> array(env,
                                     NewByteArrayOf(env, {picture.bytes.get(), picture.length}));
    if (array.Get() == nullptr) return kNoRoom;
    env->SetObjectArrayElement(written, 0, array.Get());
    if (ClearException(env)) return kBadField;
  }
  StoreDetails(env, result, report, details);
  return result;
}
