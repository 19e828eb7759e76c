// Reads the metadata of a batch of pictures into Java attribute objects.
#include <stddef.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>

#include "core/document/document_format.h"
#include "core/file/picture_file.h"
#include "jni/java_text.h"
#include "jni/native_methods.h"
#include "jni/scoped_jni.h"

namespace lumigram {
namespace {

constexpr int kMeasurements = 5;  // of a file that is still empty, a second apart

enum Field {
  kFileSize,
  kHeight,
  kWidth,
  kPop,
  kTags,
  kTagsName,
  kTagsElement,
  kCategory,
  kType,
  kName,
  kNote,
  kPart,
  kFieldCount
};

constexpr JavaField kFields[kFieldCount] = {
    {"mFileSize", "J"},
    {"mHeight", "J"},
    {"mWidth", "J"},
    {"mOrnamailPop", "J"},
    {"mTags", "Ljava/lang/String;"},
    {"mTagsName", "[Ljava/lang/String;"},
    {"mTagsElement", "[Ljava/lang/String;"},
    {"mCategory", "Ljava/lang/String;"},
    {"mType", "Ljava/lang/String;"},
    {"mName", "[Ljava/lang/String;"},
    {"mNote", "[Ljava/lang/String;"},
    {"mPart", "[B"},
};

// Stores the empty string into the unused slots of an array. One bulk copy out of an array of empty
// strings takes the time of a few stores; where the virtual machine refuses it, each slot is
// stored.
class EmptySlots {
 public:
  explicit EmptySlots(JNIEnv* env)
      : env_(env), empty_(env, nullptr), system_(env, nullptr), source_(env, nullptr) {}

  // The array has at least `end` elements.
  bool Fill(jobjectArray array, jsize begin, jsize end) {
    if (begin == end) return true;
    if (!Prepare()) return false;
    return Copy(array, begin, end) || StoreEach(array, begin, end);
  }

 private:
  // Once for all pictures of a call. Only the string itself is needed.
  bool Prepare() {
    if (empty_.Get() != nullptr) return true;
    empty_.Reset(LocalRef<jstring>(env_, env_->NewStringUTF("")).Release());
    if (empty_.Get() == nullptr) return false;
    const LocalRef<jclass> stringClass(env_, env_->FindClass("java/lang/String"));
    system_.Reset(LocalRef<jclass>(env_, env_->FindClass("java/lang/System")).Release());
    if (stringClass.Get() == nullptr || system_.Get() == nullptr) return true;
    arraycopy_ = env_->GetStaticMethodID(system_.Get(), "arraycopy",
                                         "(Ljava/lang/Object;ILjava/lang/Object;II)V");
    if (ClearException(env_) || arraycopy_ == nullptr) return true;
    LocalRef<jobjectArray> source(
        env_, env_->NewObjectArray(kLumigramMaxTags, stringClass.Get(), empty_.Get()));
    source_.Reset(source.Release());
    return true;
  }

  bool Copy(jobjectArray array, jsize begin, jsize end) {
    if (source_.Get() == nullptr) return false;
    jvalue arguments[5];
    arguments[0].l = source_.Get();
    arguments[1].i = 0;
    arguments[2].l = array;
    arguments[3].i = begin;
    arguments[4].i = end - begin;
    env_->CallStaticVoidMethodA(system_.Get(), arraycopy_, arguments);
    return !ClearException(env_);
  }

  bool StoreEach(jobjectArray array, jsize begin, jsize end) {
    for (jsize i = begin; i < end; ++i) {
      env_->SetObjectArrayElement(array, i, empty_.Get());
      if (ClearException(env_)) return false;
    }
    return true;
  }

  JNIEnv* const env_;
  LocalRef<jstring> empty_;
  LocalRef<jclass> system_;
  LocalRef<jobjectArray> source_;
  jmethodID arraycopy_ = nullptr;
};

// The attribute object that is being filled. A field is looked up when a value for it is at hand:
// an object need not have fields for which its picture has none, and those stored before one is
// found missing keep their values.
class AttributeObject {
 public:
  explicit AttributeObject(JNIEnv* env) : env_(env), class_(env, nullptr), empty_(env) {}

  // Turns to another object. Field IDs are good for one class, whose own reference is held while
  // they are kept: the number of a released one may come to stand for another class.
  Status Select(jobject object) {
    LocalRef<jclass> itsClass(env_, env_->GetObjectClass(object));
    if (itsClass.Get() == nullptr) return kBadField;
    object_ = object;
    if (class_.Get() != nullptr && env_->IsSameObject(class_.Get(), itsClass.Get())) return kOk;
    class_.Reset(itsClass.Release());
    std::fill(std::begin(ids_), std::end(ids_), nullptr);
    return kOk;
  }

  Status SetNumber(Field field, int32_t value) {
    const jfieldID id = Find(field);
    if (id == nullptr) return kBadField;
    env_->SetLongField(object_, id, value);
    return kOk;
  }

  template <size_t N>
  Status SetText(Field field, const char (&text)[N]) {
    const jfieldID id = Find(field);
    if (id == nullptr) return kBadField;
    const LocalRef<jstring> string(env_, NewJavaString(env_, text));
    if (string.Get() == nullptr) return kBadField;
    env_->SetObjectField(object_, id, string.Get());
    return kOk;
  }

  // Stores the first `count` texts into the array that the object holds, and the empty text behind
  // them until `slots` elements are stored. An array that is too short is left as it is.
  template <size_t N>
  Status SetTexts(Field field, const char (*texts)[N], int32_t count, int32_t slots) {
    const jfieldID id = Find(field);
    if (id == nullptr) return kBadField;
    const LocalRef<jobjectArray> array(env_, env_->GetObjectField(object_, id));
    if (LengthOf(env_, array.Get()) < slots) return kBadField;
    for (int32_t i = 0; i < count; ++i) {
      if (!StoreJavaString(env_, array.Get(), i, texts[i])) return kBadField;
    }
    return empty_.Fill(array.Get(), count, slots) ? kOk : kBadField;
  }

  Status SetParts(Field field, const AttrInfo& attr) {
    const jfieldID id = Find(field);
    if (id == nullptr) return kBadField;
    const LocalRef<jbyteArray> array(env_, env_->GetObjectField(object_, id));
    if (LengthOf(env_, array.Get()) < attr.partCount) return kBadField;
    JavaBytes numbers(env_, array.Get(), JavaBytes::kCopyBack);
    if (numbers.Get() == nullptr) return kBadField;
    for (int32_t i = 0; i < attr.partCount; ++i) {
      numbers.Get()[i] = static_cast<jbyte>(GetPartNo(attr.part[i]));
    }
    return kOk;
  }

 private:
  jfieldID Find(Field field) {
    if (ids_[field] == nullptr) ids_[field] = FindField(env_, class_.Get(), kFields[field]);
    return ids_[field];
  }

  JNIEnv* const env_;
  jobject object_ = nullptr;
  LocalRef<jclass> class_;
  jfieldID ids_[kFieldCount] = {};
  EmptySlots empty_;
};

// What a call works in: far more than the stack of a Java thread may hold.
struct WorkingStorage {
  char document[kLumigramDocumentBufferBytes];
  AttrInfo attr;
  TagCollection tags;
};

// Reads the pictures of one call, one after another in the same storage.
class BatchReader {
 public:
  BatchReader(JNIEnv* env, WorkingStorage* storage) : env_(env), storage_(*storage), object_(env) {}

  Status ReadPicture(jobjectArray paths, jobjectArray attrs, jsize i) {
    const LocalRef<jobject> attr(env_, env_->GetObjectArrayElement(attrs, i));
    if (attr.Get() == nullptr) return kBadArgument;
    if (Status s = object_.Select(attr.Get()); s != kOk) return s;
    const LocalRef<jstring> path(env_, env_->GetObjectArrayElement(paths, i));
    if (Status s = ReadContainer(path.Get()); s != kOk) return s == kNoDocument ? kOk : s;
    ClearTags();
    return TransferDocument();
  }

 private:
  Status ReadContainer(jstring path) {
    PictureFile picture;
    if (Status s = Open(path, &picture); s != kOk) return s;
    int32_t size;
    if (!Measure(picture, &size) || size > kLumigramMaxPictureBytes) return kBadStream;
    if (Status s = object_.SetNumber(kFileSize, size); s != kOk) return s;
    memset(storage_.document, 0, sizeof storage_.document);
    int32_t height = 0, width = 0, pop = 0;
    const Status status = picture.ReadDocument(storage_.document, &height, &width, &pop);
    // Also those of a picture that was refused: a reader tells what it found before.
    if (Status s = object_.SetNumber(kHeight, height); s != kOk) return s;
    if (Status s = object_.SetNumber(kWidth, width); s != kOk) return s;
    if (Status s = object_.SetNumber(kPop, pop); s != kOk) return s;
    return status;
  }

  Status Open(jstring path, PictureFile* picture) {
    const JavaText text(env_, path);
    return text.Get() == nullptr ? kBadArgument : picture->Open(text.Get());
  }

  // Who has just created a file gets a moment to fill it.
  static bool Measure(const PictureFile& picture, int32_t* size) {
    for (int i = 0; i < kMeasurements; ++i) {
      if (picture.GetSize(size) == kOk && *size > 0) return true;
      sleep(1);
    }
    return false;
  }

  // Counts, groups and joined names, to which elements are added, and the first element, which
  // shows whether there are any. Clearing all elements takes several times as long as reading a
  // small picture. The labels are cleared when they are read.
  void ClearTags() {
    memset(&storage_.tags, 0, offsetof(TagCollection, tagName));
    storage_.tags.tagName[0][0] = storage_.tags.tagElement[0][0] = '\0';
  }

  Status TransferDocument() {
    const AttrInfo& attr = storage_.attr;
    const bool labelled = GetLabelInfo(storage_.document, &storage_.attr) == kOk;
    if (Status s = TransferTags(); s != kOk) return s;
    if (Status s = TransferElement(kCategoryStart, kCategoryEnd, kCategory); s != kOk) return s;
    if (Status s = TransferElement(kTypeStart, kTypeEnd, kType); s != kOk) return s;
    if (!labelled) return kOk;
    if (Status s = object_.SetTexts(kName, attr.name, attr.nameCount, attr.nameCount); s != kOk) {
      return s;
    }
    if (Status s = object_.SetTexts(kNote, attr.note, attr.noteCount, attr.noteCount); s != kOk) {
      return s;
    }
    return object_.SetParts(kPart, attr);
  }

  Status TransferTags() {
    TagCollection& tags = storage_.tags;
    CollectTagGroups(storage_.document, &tags);
    if (tags.joinedNames[0] != '\0') {
      if (Status s = object_.SetText(kTags, tags.joinedNames); s != kOk) return s;
    }
    if (Status s = TransferAllSlots(kTagsName, tags.tagName); s != kOk) return s;
    return TransferAllSlots(kTagsElement, tags.tagElement);
  }

  // Java sees whether there are tags by the first of them.
  template <size_t N>
  Status TransferAllSlots(Field field, const char (&texts)[kLumigramMaxTags][N]) {
    if (texts[0][0] == '\0') return kOk;
    return object_.SetTexts(field, texts, storage_.tags.elementCount, kLumigramMaxTags);
  }

  // An element that is missing or unusable leaves its field alone.
  Status TransferElement(const char* startTag, const char* endTag, Field field) {
    char content[kLumigramMaxTextBytes + 1] = {};
    if (GetElementContent(storage_.document, startTag, endTag, content) != kOk) return kOk;
    return object_.SetText(field, content);
  }

  JNIEnv* const env_;
  WorkingStorage& storage_;
  AttributeObject object_;
};

}  // namespace
}  // namespace lumigram

using namespace lumigram;

jint Java_lumigram_jni_LumigramJni_getLumigramAttrInfo(JNIEnv* env, jclass, jobjectArray paths,
                                                       jobjectArray attrs, jbyteArray results) {
  if (attrs == nullptr || paths == nullptr || results == nullptr) return kNullArgument;
  const jsize count =
      std::min({LengthOf(env, paths), LengthOf(env, attrs), LengthOf(env, results)});
  if (count < 0) return kBadField;
  const ScopedBlock<WorkingStorage> storage(
      static_cast<WorkingStorage*>(malloc(sizeof(WorkingStorage))));
  if (storage == nullptr) return kNoRoom;
  JavaBytes codes(env, results, JavaBytes::kCopyBack);
  if (codes.Get() == nullptr) return kBadField;
  BatchReader reader(env, storage.get());
  for (jsize i = 0; i < count; ++i) {
    codes.Get()[i] = static_cast<jbyte>(reader.ReadPicture(paths, attrs, i));
  }
  return kOk;
}
