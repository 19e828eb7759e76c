// Looks up one tag group of a picture for Java.
#include <stdlib.h>
#include <string.h>

#include "core/file/tag_info.h"
#include "jni/java_text.h"
#include "jni/native_methods.h"
#include "jni/scoped_jni.h"

namespace lumigram {
namespace {

struct Contents {
  char text[kLumigramMaxGroupSize][kLumigramMaxContentBytes + 1];
};

using OpenPicture = Status (PictureFile::*)(const char* path);

// After kOk of Open(), *isOpened is set.
Status LookUp(JNIEnv* env, jstring path, jstring tagName, OpenPicture open, bool* isOpened,
              Contents* contents) {
  const JavaText pathText(env, path);
  if (pathText.Get() == nullptr) return kNullArgument;
  const JavaText nameText(env, tagName);
  if (nameText.Get() == nullptr) return kNullArgument;
  if (strlen(nameText.Get()) > kLumigramMaxTextBytes) return kNullArgument;
  PictureFile picture;
  if (Status s = (picture.*open)(pathText.Get()); s != kOk) return s;
  *isOpened = true;
  return LookUpTags(picture, nameText.Get(), contents->text);
}

Status StoreAll(JNIEnv* env, const Contents& contents, jobjectArray results) {
  for (jsize i = 0; i < kLumigramMaxGroupSize; ++i) {
    if (!StoreJavaString(env, results, i, contents.text[i])) return kBadField;
  }
  return kOk;
}

Status LookUpAndStore(JNIEnv* env, jstring path, jstring tagName, jobjectArray results,
                      OpenPicture open, bool* isOpened) {
  if (path == nullptr || tagName == nullptr || results == nullptr) return kNullArgument;
  if (LengthOf(env, results) < kLumigramMaxGroupSize) return kBadArgument;
  const ScopedBlock<Contents> contents(static_cast<Contents*>(calloc(1, sizeof(Contents))));
  if (contents == nullptr) return kNoRoom;
  if (Status s = LookUp(env, path, tagName, open, isOpened, contents.get()); s != kOk) return s;
  return StoreAll(env, *contents, results);
}

}  // namespace
}  // namespace lumigram

using namespace lumigram;

// Whatever goes wrong in a picture that has been opened is kBadArgument.
jint Java_lumigram_jni_LumigramJni_getLumigramTagInfo(JNIEnv* env, jclass, jstring path,
                                                      jstring tagName, jobjectArray results) {
  bool isOpened = false;
  const Status status = LookUpAndStore(env, path, tagName, results, &PictureFile::Open, &isOpened);
  return status != kOk && isOpened ? kBadArgument : status;
}

jint Java_lumigram_jni_LumigramFiles_lookUpTag(JNIEnv* env, jclass, jstring path, jstring tagName,
                                               jobjectArray results) {
  bool isOpened = false;
  return LookUpAndStore(env, path, tagName, results, &PictureFile::OpenReady, &isOpened);
}
