// Looks up one tag group of a picture for Java.
#include <stdlib.h>
#include <string.h>

#include "core/file/tag_info.h"
#include "jni/java_text.h"
#include "jni/lent_bytes.h"
#include "jni/native_methods.h"
#include "jni/scoped_jni.h"

namespace lumigram {
namespace {

struct Contents {
  char text[kLumigramMaxGroupSize][kLumigramMaxContentBytes + 1];
};

Status StoreAll(JNIEnv* env, const Contents& contents, jobjectArray results) {
  for (jsize i = 0; i < kLumigramMaxGroupSize; ++i) {
    if (!StoreJavaString(env, results, i, contents.text[i])) return kBadField;
  }
  return kOk;
}

// lookUp(name, contents) fills the contents, which are all empty.
template <typename LookUp>
Status LookUpAndStore(JNIEnv* env, jstring tagName, jobjectArray results, LookUp lookUp) {
  if (LengthOf(env, results) < kLumigramMaxGroupSize) return kBadArgument;
  const ScopedBlock<Contents> contents(static_cast<Contents*>(calloc(1, sizeof(Contents))));
  if (contents == nullptr) return kNoRoom;
  const JavaText name(env, tagName);
  if (name.Get() == nullptr || strlen(name.Get()) > kLumigramMaxTextBytes) return kNullArgument;
  if (Status s = lookUp(name.Get(), contents->text); s != kOk) return s;
  return StoreAll(env, *contents, results);
}

}  // namespace
}  // namespace lumigram

using namespace lumigram;

jint Java_lumigram_jni_LumigramJni_getLumigramTagInfo(JNIEnv* env, jclass, jstring path,
                                                      jstring tagName, jobjectArray results) {
  if (path == nullptr || tagName == nullptr || results == nullptr) return kNullArgument;
  return LookUpAndStore(env, tagName, results, [&](const char* name, char(*contents)[1025]) {
    const JavaText text(env, path);
    if (text.Get() == nullptr) return kNullArgument;
    PictureFile picture;
    if (Status s = picture.Open(text.Get()); s != kOk) return s;
    return LookUpTags(picture, name, contents) == kOk ? kOk : kBadArgument;
  });
}

jint Java_lumigram_jni_LumigramFiles_lookUpTag(JNIEnv* env, jclass, jstring path, jstring tagName,
                                               jobjectArray results) {
  if (path == nullptr || tagName == nullptr || results == nullptr) return kNullArgument;
  return LookUpAndStore(env, tagName, results, [&](const char* name, char(*contents)[1025]) {
    const JavaText text(env, path);
    if (text.Get() == nullptr) return kNullArgument;
    PictureFile picture;
    if (Status s = picture.OpenReady(text.Get()); s != kOk) return s;
    return LookUpTags(picture, name, contents);
  });
}

jint Java_lumigram_jni_LumigramBytes_lookUpTag(JNIEnv* env, jclass, jbyteArray bytes, jint type,
                                               jstring tagName, jobjectArray results) {
  if (bytes == nullptr || tagName == nullptr || results == nullptr) return kNullArgument;
  const std::optional<Kind> kind = KindOf(type);
  if (!kind) return kUnsupported;
  return LookUpAndStore(env, tagName, results, [&](const char* name, char(*contents)[1025]) {
    jsize length;
    return static_cast<Status>(UseBytes(env, bytes, &length, [&](ByteSource& source) {
      return LookUpTags(source, *kind, name, contents);
    }));
  });
}
