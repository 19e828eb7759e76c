// Writes the metadata of a Java attribute object into a picture file.
#include <algorithm>

#include "core/file/picture_file.h"
#include "core/write/rewrite.h"
#include "core/write/write_picture.h"
#include "jni/attribute_record.h"
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

bool TakeFingerprint(JNIEnv* env, jlongArray numbers, FingerprintValue* value) {
  jlong taken[2] = {};
  env->GetLongArrayRegion(numbers, 0, 2, taken);
  *value = {taken[0], taken[1]};
  return !ClearException(env);
}

// The numbers that go with a result; see the Java method.
bool StoreDetails(JNIEnv* env, RewriteResult result, const RewriteReport& report,
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
  return !ClearException(env);
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
                                                  jlongArray expected, jboolean replacesUnread,
                                                  jlongArray details) {
  if (path == nullptr || attr == nullptr || details == nullptr) return kNullArgument;
  // Nothing that follows the write may fail.
  if (LengthOf(env, details) < kUnreadKinds) return kBadArgument;
  ScopedBlock<AttrInfo> record;
  if (Status s = TakeRecord(env, attr, &record); s != kOk) return s;
  FingerprintValue seen;
  if (expected != nullptr && !TakeFingerprint(env, expected, &seen)) return kBadField;
  const JavaText text(env, path);
  if (text.Get() == nullptr) return kBadField;
  RewriteReport report = {};
  const RewriteResult result = RewriteFile(
      text.Get(), {*record, expected == nullptr ? nullptr : &seen, replacesUnread != JNI_FALSE},
      &report);
  return StoreDetails(env, result, report, details) ? result : int32_t{kBadField};
}
