#include "jni/attribute_object.h"

#include <algorithm>
#include <utility>

#include "jni/attribute_fields.h"

namespace lumigram {

const JavaField AttributeObject::kFields[kFieldCount] = {
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

Status AttributeObject::Select(jobject object) {
  LocalRef<jclass> itsClass(env_, env_->GetObjectClass(object));
  if (itsClass.Get() == nullptr) return kBadField;
  object_ = object;
  if (class_.Get() != nullptr && env_->IsSameObject(class_.Get(), itsClass.Get())) return kOk;
  class_ = std::move(itsClass);
  std::fill(std::begin(ids_), std::end(ids_), nullptr);
  return kOk;
}

jfieldID AttributeObject::Find(Field field) {
  if (ids_[field] == nullptr) ids_[field] = FindField(env_, class_.Get(), kFields[field]);
  return ids_[field];
}

Status AttributeObject::SetNumber(Field field, int32_t value) {
  const jfieldID id = Find(field);
  if (id == nullptr) return kBadField;
  env_->SetLongField(object_, id, value);
  return kOk;
}

Status AttributeObject::SetDimensions(const PictureFacts& facts) {
  if (Status s = SetNumber(kHeight, facts.height); s != kOk) return s;
  if (Status s = SetNumber(kWidth, facts.width); s != kOk) return s;
  return SetNumber(kPop, facts.pop);
}

Status AttributeObject::SetDocument(const DeliveredDocument& delivered, TagRule rule) {
  const AttrInfo& attr = delivered.attr;
  if (Status s = SetTags(delivered.tags, rule); s != kOk) return s;
  if (delivered.hasCategory) {
    if (Status s = SetText(kCategory, attr.category); s != kOk) return s;
  }
  if (delivered.hasType) {
    if (Status s = SetText(kType, attr.type); s != kOk) return s;
  }
  if (!delivered.hasLabels) return kOk;
  if (Status s = SetTexts(kName, attr.name, attr.nameCount, attr.nameCount); s != kOk) return s;
  if (Status s = SetTexts(kNote, attr.note, attr.noteCount, attr.noteCount); s != kOk) return s;
  return SetParts(attr);
}

// Java checks element 0 to see whether there are tags.
Status AttributeObject::SetTags(const TagCollection& tags, TagRule rule) {
  const bool hasNames = tags.tagName[0][0] != '\0';
  const bool hasContents = rule == TagRule::kBoth ? hasNames : tags.tagElement[0][0] != '\0';
  if (tags.joinedNames[0] != '\0') {
    if (Status s = SetText(kTags, tags.joinedNames); s != kOk) return s;
  }
  const int32_t count = tags.elementCount;
  if (hasNames) {
    if (Status s = SetTexts(kTagsName, tags.tagName, count, kLumigramMaxTags); s != kOk) return s;
  }
  return hasContents ? SetTexts(kTagsElement, tags.tagElement, count, kLumigramMaxTags) : kOk;
}

Status AttributeObject::SetParts(const AttrInfo& attr) {
  const jfieldID id = Find(kPart);
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

}  // namespace lumigram
