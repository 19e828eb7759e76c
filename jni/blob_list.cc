// Lists the blobs of a picture for Java.
#include <string.h>

#include "core/file/extraction.h"
#include "core/file/picture_file.h"
#include "jni/java_text.h"
#include "jni/lent_bytes.h"
#include "jni/native_methods.h"

namespace lumigram {
namespace {

// The blobs that a survey visits, packed: label, NUL, name, NUL, size. A picture may hold a hundred
// thousand of them.
class BlobList {
 public:
  // A blob takes at least five bytes of its picture besides its label and name.
  bool Reserve(jsize pictureSize) {
    const size_t capacity = 3 * static_cast<size_t>(pictureSize);
    block_.reset(static_cast<char*>(malloc(capacity)));
    left_ = block_ == nullptr ? 0 : capacity;
    end_ = block_.get();
    return block_ != nullptr;
  }

  Status Fill(ByteSource& source, Kind kind) {
    Survey survey;
    const auto visit = [](void* self, const FoundBlob& blob) {
      static_cast<BlobList*>(self)->Add(blob);
    };
    if (Status s = SurveyPicture(source, kind, &survey, {visit, this}); s != kOk) return s;
    return isFull_ ? kNoRoom : kOk;
  }

  // An array with three strings for each blob: label, name, size; null when it cannot be made.
  jobjectArray ToJava(JNIEnv* env) const {
    const LocalRef<jclass> type(env, env->FindClass("java/lang/String"));
    if (type.Get() == nullptr) return nullptr;
    LocalRef<jobjectArray> array(env, env->NewObjectArray(3 * count_, type.Get(), nullptr));
    if (array.Get() == nullptr) return nullptr;
    const char* at = block_.get();
    for (jsize i = 0; i < 3 * count_; ++i) {
      const LocalRef<jstring> text(env, NewStringOfBoundedText(env, at));
      if (text.Get() == nullptr) return nullptr;
      env->SetObjectArrayElement(array.Get(), i, text.Get());
      if (ClearException(env)) return nullptr;
      at += strlen(at) + 1;
    }
    return array.Release();
  }

 private:
  void Add(const FoundBlob& blob) {
    char size[11];
    char* digit = size + sizeof size;
    *--digit = '\0';
    uint32_t rest = blob.size;
    do {
      *--digit = static_cast<char>('0' + rest % 10);
      rest /= 10;
    } while (rest != 0);
    AddText(blob.label);
    AddText(blob.name);
    AddText(digit);
    ++count_;
  }

  void AddText(std::string_view text) {
    text = {text.data(), strnlen(text.data(), text.size())};
    isFull_ = isFull_ || text.size() >= left_;
    if (isFull_) return;
    memcpy(end_, text.data(), text.size());
    end_[text.size()] = '\0';
    end_ += text.size() + 1;
    left_ -= text.size() + 1;
  }

  ScopedBlock<char> block_;
  char* end_ = nullptr;
  size_t left_ = 0;
  bool isFull_ = false;
  jsize count_ = 0;
};

// Returns the list after kOk, else null, and stores the status.
jobjectArray Deliver(JNIEnv* env, int32_t code, const BlobList& list, jintArray status) {
  const jobjectArray array = code == kOk ? list.ToJava(env) : nullptr;
  const jint stored = code == kOk && array == nullptr ? kNoRoom : code;
  if (status != nullptr) env->SetIntArrayRegion(status, 0, 1, &stored);
  ClearException(env);
  return array;
}

Status ListFile(JNIEnv* env, jstring path, BlobList* list) {
  const JavaText text(env, path);
  if (text.Get() == nullptr) return kNullArgument;
  PictureFile picture;
  if (Status s = picture.OpenReady(text.Get()); s != kOk) return s;
  int32_t size = 0;
  if (Status s = picture.GetSize(&size); s != kOk) return s;
  if (!list->Reserve(size)) return kNoRoom;
  ByteSource source = picture.Source();
  return list->Fill(source, picture.GetKind());
}

}  // namespace
}  // namespace lumigram

using namespace lumigram;

jobjectArray Java_lumigram_jni_LumigramFiles_listBlobs(JNIEnv* env, jclass, jstring path,
                                                       jintArray status) {
  BlobList list;
  const Status code = ListFile(env, path, &list);
  return Deliver(env, code, list, status);
}

jobjectArray Java_lumigram_jni_LumigramBytes_listBlobs(JNIEnv* env, jclass, jbyteArray bytes,
                                                       jint type, jintArray status) {
  const std::optional<Kind> kind = KindOf(type);
  BlobList list;
  jsize length = 0;
  const int32_t code =
      !kind ? int32_t{kUnsupported} : UseBytes(env, bytes, &length, [&](ByteSource& source) {
        return list.Reserve(length) ? list.Fill(source, *kind) : kNoRoom;
      });
  return Deliver(env, code, list, status);
}
