// The Java objects into which the metadata of pictures are read.
#ifndef LUMIGRAM_JNI_ATTRIBUTE_OBJECT_H_
#define LUMIGRAM_JNI_ATTRIBUTE_OBJECT_H_

#include <jni.h>
#include <stddef.h>

#include "core/document/delivered.h"
#include "jni/empty_slots.h"
#include "jni/java_text.h"
#include "jni/scoped_jni.h"

namespace lumigram {

// What the readers store besides the document.
struct PictureFacts {
  int32_t size = 0;
  int32_t height = 0;
  int32_t width = 0;
  int32_t pop = 0;
};

// The attribute object that is being filled. A field is looked up only when there is a value for
// it, so that a field without a value may be missing. When a field is missing, values that were
// stored before stay.
class AttributeObject {
 public:
  // The conditions for storing the arrays of tag names and of contents.
  enum class TagRule {
    kEachByItsFirst,  // each unless its first element is empty
    kBoth,            // both if there are tags
  };

  explicit AttributeObject(JNIEnv* env) : env_(env), empty_(env) {}

  // Selects another object. Field IDs are valid for one class. We keep a reference to the class as
  // long as the IDs: after a release, the same reference value may refer to another class.
  Status Select(jobject object);

  Status SetSize(const PictureFacts& facts) { return SetNumber(kFileSize, facts.size); }
  Status SetDimensions(const PictureFacts& facts);
  Status SetDocument(const DeliveredDocument& delivered, TagRule rule);

 private:
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
  static const JavaField kFields[kFieldCount];

  jfieldID Find(Field field);
  Status SetNumber(Field field, int32_t value);
  Status SetTags(const TagCollection& tags, TagRule rule);
  Status SetParts(const AttrInfo& attr);

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

  JNIEnv* const env_;
  jobject object_ = nullptr;
  LocalRef<jclass> class_;
  jfieldID ids_[kFieldCount] = {};
  EmptySlots empty_;
};

}  // namespace lumigram

#endif  // LUMIGRAM_JNI_ATTRIBUTE_OBJECT_H_
