// Reads the metadata of a batch of pictures into Java attribute objects.
#include <stddef.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "core/document/delivered.h"
#include "core/file/picture_file.h"
#include "jni/attribute_fields.h"
#include "jni/empty_slots.h"
#include "jni/java_text.h"
#include "jni/native_methods.h"
#include "jni/scoped_jni.h"

namespace lumigram {
namespace {

constexpr int kMeasurements = 5;  // of an empty file, one second apart

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
    kTagsElementField,
    kCategoryField,
    kTypeField,
    kNameField,
    kNoteField,
    kPartField,
};

// The attribute object that is being filled. A field is looked up only when there is a value for
// it, so that a field without a value may be missing. When a field is missing, values that were
// stored before stay.
class AttributeObject {
 public:
  explicit AttributeObject(JNIEnv* env) : env_(env), empty_(env) {}

  // Selects another object. Field IDs are valid for one class. We keep a reference to the class as
  // long as the IDs: after a release, the same reference value may refer to another class.
  Status Select(jobject object) {
    LocalRef<jclass> itsClass(env_, env_->GetObjectClass(object));
    if (itsClass.Get() == nullptr) return kBadField;
    object_ = object;
    if (class_.Get() != nullptr && env_->IsSameObject(class_.Get(), itsClass.Get())) return kOk;
    class_ = std::move(itsClass);
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

  // Stores the first `count` texts into the array that the object holds, and the empty text after
  // them until `slots` elements are stored. An array that is too short is not changed.
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

// The working storage of a call, which is too large for the stack of a Java thread.
struct WorkingStorage {
  char document[kLumigramDocumentBufferBytes];
  DeliveredDocument delivered;
};

// Reads the pictures of one call, one after another, in the same storage.
class BatchReader {
 public:
  BatchReader(JNIEnv* env, WorkingStorage* storage) : env_(env), storage_(*storage), object_(env) {}

  Status ReadPicture(jobjectArray paths, jobjectArray attrs, jsize i) {
    const LocalRef<jobject> attr(env_, env_->GetObjectArrayElement(attrs, i));
    if (attr.Get() == nullptr) return kBadArgument;
    if (Status s = object_.Select(attr.Get()); s != kOk) return s;
    const LocalRef<jstring> path(env_, env_->GetObjectArrayElement(paths, i));
    if (Status s = ReadContainer(path.Get()); s != kOk) return s == kNoDocument ? kOk : s;
    TakeDocumentApart(storage_.document, &storage_.delivered);
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
    const Status status = picture.ReadDocument({storage_.document, &height, &width, &pop});
    // A reader may store dimensions even if it refuses the picture.
    if (Status s = object_.SetNumber(kHeight, height); s != kOk) return s;
    if (Status s = object_.SetNumber(kWidth, width); s != kOk) return s;
    if (Status s = object_.SetNumber(kPop, pop); s != kOk) return s;
    return status;
  }

  Status Open(jstring path, PictureFile* picture) {
    const JavaText text(env_, path);
    return text.Get() == nullptr ? kBadArgument : picture->Open(text.Get());
  }

  // Gives the program that is still writing the file time to finish.
  static bool Measure(const PictureFile& picture, int32_t* size) {
    for (int i = 0; i < kMeasurements; ++i) {
      if (picture.GetSize(size) == kOk && *size > 0) return true;
      sleep(1);
    }
    return false;
  }

  Status TransferDocument() {
    const DeliveredDocument& delivered = storage_.delivered;
    const AttrInfo& attr = delivered.attr;
    if (Status s = TransferTags(delivered.tags); s != kOk) return s;
    if (delivered.hasCategory) {
      if (Status s = object_.SetText(kCategory, attr.category); s != kOk) return s;
    }
    if (delivered.hasType) {
      if (Status s = object_.SetText(kType, attr.type); s != kOk) return s;
    }
    if (!delivered.hasLabels) return kOk;
    if (Status s = object_.SetTexts(kName, attr.name, attr.nameCount, attr.nameCount); s != kOk) {
      return s;
    }
    if (Status s = object_.SetTexts(kNote, attr.note, attr.noteCount, attr.noteCount); s != kOk) {
      return s;
    }
    return object_.SetParts(kPart, attr);
  }

  Status TransferTags(const TagCollection& tags) {
    if (tags.joinedNames[0] != '\0') {
      if (Status s = object_.SetText(kTags, tags.joinedNames); s != kOk) return s;
    }
    if (Status s = TransferAllSlots(kTagsName, tags.tagName); s != kOk) return s;
    return TransferAllSlots(kTagsElement, tags.tagElement);
  }

  // Java checks element 0 to see whether there are tags.
  template <size_t N>
  Status TransferAllSlots(Field field, const char (&texts)[kLumigramMaxTags][N]) {
    if (texts[0][0] == '\0') return kOk;
    return object_.SetTexts(field, texts, storage_.delivered.tags.elementCount, kLumigramMaxTags);
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
