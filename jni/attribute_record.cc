#include "jni/attribute_record.h"

#include <string.h>

#include "core/document/blob_entries.h"
#include "core/document/document_format.h"
#include "jni/attribute_fields.h"
#include "jni/scoped_jni.h"

namespace lumigram {
namespace {

enum Field {
  kName,
  kNote,
  kPart,
  kCategory,
  kType,
  kTags,
  kTagsElement,
  kBlobLabel,
  kBlobUri,
  kFieldCount
};

constexpr JavaField kFields[kFieldCount] = {
    kNameField,
    kNoteField,
    kPartField,
    kCategoryField,
    kTypeField,
    {"mTags", "[Ljava/lang/String;"},
    kTagsElementField,
    {"mApplicationExtensionLabelName", "[Ljava/lang/String;"},
    {"mApplicationExtensionBinaryDataUri", "[Ljava/lang/String;"},
};

// The values of an attribute object's fields.
class AttributeValues {
 public:
  explicit AttributeValues(JNIEnv* env) : env_(env) {}

  // Only the array of the tag names may be null: there are no tags then.
  Status Take(jobject attr) {
    const LocalRef<jclass> type(env_, env_->GetObjectClass(attr));
    if (type.Get() == nullptr) return kBadField;
    for (int f = 0; f < kFieldCount; ++f) {
      const jfieldID id = FindField(env_, type.Get(), kFields[f]);
      if (id == nullptr) return kBadField;
      values_[f] = {env_, env_->GetObjectField(attr, id)};
      if (values_[f].Failed()) return kBadField;
      const bool isArray = kFields[f].signature[0] == '[';
      if (values_[f].Get() == nullptr && isArray && f != kTags) return kBadField;
      if (isArray) lengths_[f] = LengthOf(env_, static_cast<jarray>(values_[f].Get()));
      if (lengths_[f] < 0) return kBadField;
    }
    return kOk;
  }

  // 0 for a null array.
  jsize Length(Field field) const { return lengths_[field]; }
  jstring String(Field field) const { return static_cast<jstring>(values_[field].Get()); }
  jobjectArray Strings(Field field) const {
    return static_cast<jobjectArray>(values_[field].Get());
  }
  jbyteArray Bytes(Field field) const { return static_cast<jbyteArray>(values_[field].Get()); }

 private:
  JNIEnv* const env_;
  LocalRef<jobject> values_[kFieldCount];
  jsize lengths_[kFieldCount] = {};
};

// Clears only the first byte of each text: clearing the whole record would take as long as building
// a small picture in memory.
void EmptyTexts(AttrInfo* attr) {
  for (auto& text : attr->name) text[0] = '\0';
  for (auto& text : attr->note) text[0] = '\0';
  for (auto& text : attr->part) text[0] = '\0';
  attr->category[0] = attr->type[0] = '\0';
  for (TagEntry& tag : attr->tag) tag.tagName[0] = tag.tagElement[0] = '\0';
  for (AppExtEntry& entry : attr->appExt)
    entry.labelName[0] = entry.binaryDataUri[0] = entry.fileName[0] = '\0';
}

// Two blobs must not have the same name: a blob is found by its name.
bool IsNameTaken(const AttrInfo& attr, int entry) {
  const char* const name = attr.appExt[entry].fileName;
  if (name[0] == '\0') return false;
  for (int i = entry - 1; i >= 0; --i) {
    if (strcmp(attr.appExt[i].fileName, name) == 0) return true;
  }
  return false;
}

// Copies the fields of one object into a record of empty texts.
class RecordFiller {
 public:
  RecordFiller(JNIEnv* env, AttrInfo* attr) : env_(env), attr_(*attr), values_(env) {}

  Status Fill(jobject attr) {
    if (Status s = values_.Take(attr); s != kOk) return s;
    if (Status s = FillLabels(); s != kOk) return s;
    if (Status s = FillEntries(); s != kOk) return s;
    if (!CopyOptional(values_.String(kCategory), attr_.category)) return kBadField;
    return CopyOptional(values_.String(kType), attr_.type) ? kOk : kBadField;
  }

 private:
  // Entry i of an array of strings; null past the end of the array.
  LocalRef<jstring> Entry(Field field, int i) {
    const bool isThere = i < values_.Length(field);
    return {env_, isThere ? env_->GetObjectArrayElement(values_.Strings(field), i) : nullptr};
  }

  // Most texts are empty, and the record's fields are empty already: nothing is copied for them.
  template <size_t N>
  bool Copy(jstring string, char (&field)[N]) {
    if (string != nullptr && env_->GetStringUTFLength(string) == 0) {
      return !ClearException(env_);
    }
    const JavaText text(env_, string);
    if (text.Get() != nullptr) CopyText(field, text.Get());
    return text.Get() != nullptr;
  }

  template <size_t N>
  bool CopyOptional(jstring string, char (&field)[N]) {
    return string == nullptr || Copy(string, field);
  }

  template <size_t N>
  bool CopyEntry(Field field, int i, char (&copy)[N]) {
    return Copy(Entry(field, i).Get(), copy);
  }

  Status FillLabels() {
    const JavaBytes parts(env_, values_.Bytes(kPart), JavaBytes::kDiscard);
    if (parts.Get() == nullptr) return kBadField;
    for (int i = 0; i < kLumigramMaxLabels; ++i) {
      if (!CopyEntry(kName, i, attr_.name[i])) return kBadField;
      if (!CopyEntry(kNote, i, attr_.note[i])) return kBadField;
      const int32_t part = i < values_.Length(kPart) ? parts.Get()[i] : 0;
      CopyText(attr_.part[i], GetPartName(static_cast<uint32_t>(part)));
    }
    return kOk;
  }

  Status FillEntries() {
    for (int i = 0; i < kLumigramMaxTags; ++i) {
      const LocalRef<jstring> name = Entry(kTags, i);
      if (name.Get() == nullptr) return name.Failed() ? kBadField : kOk;
      if (!Copy(name.Get(), attr_.tag[i].tagName)) return kBadField;
      if (Status s = FillEntry(i); s != kOk) return s;
    }
    return kOk;
  }

  // Fills the rest of a tag: its content and, if it has a label and a URI, a blob.
  Status FillEntry(int i) {
    const LocalRef<jstring> content = Entry(kTagsElement, i);
    const LocalRef<jstring> label = Entry(kBlobLabel, i);
    const LocalRef<jstring> uri = Entry(kBlobUri, i);
    if (content.Get() == nullptr || label.Failed() || uri.Failed()) return kBadField;
    if ((label.Get() == nullptr) != (uri.Get() == nullptr)) return kBadField;
    if (label.Get() == nullptr) return FillContent(content.Get(), i);
    if (!Copy(label.Get(), attr_.appExt[i].labelName)) return kBadField;
    return FillBlob(uri.Get(), i);
  }

  // A content that refers to a blob of this picture keeps that blob.
  Status FillContent(jstring content, int i) {
    const JavaText text(env_, content);
    if (text.Get() == nullptr) return kBadField;
    CopyText(attr_.tag[i].tagElement, text.Get());
    return RefersToThisPicture(text.Get()) ? TakeUri(text.Get(), i) : kOk;
  }

  // The content of the tag is replaced by a reference to the blob.
  Status FillBlob(jstring uri, int i) {
    const JavaText text(env_, uri);
    if (text.Get() == nullptr) return kBadField;
    if (Status s = TakeUri(text.Get(), i); s != kOk) return s;
    char(&element)[kLumigramMaxContentBytes + 1] = attr_.tag[i].tagElement;
    CopyText(element, kThisPicture);
    static_assert(kThisPicture.size() + sizeof(AppExtEntry::fileName) <= sizeof element);
    strcpy(element + kThisPicture.size(), attr_.appExt[i].fileName);
    return IsNameTaken(attr_, i) ? kDuplicateBlob : kOk;
  }

  Status TakeUri(const char* uri, int i) {
    if (std::string_view(uri).find('/') == std::string_view::npos) return kBadField;
    SetUri(uri, &attr_.appExt[i]);
    return kOk;
  }

  JNIEnv* const env_;
  AttrInfo& attr_;
  AttributeValues values_;
};

}  // namespace

Status TakeRecord(JNIEnv* env, jobject object, ScopedBlock<AttrInfo>* record) {
  record->reset(static_cast<AttrInfo*>(malloc(sizeof(AttrInfo))));
  if (*record == nullptr) return kNoRoom;
  EmptyTexts(record->get());
  return RecordFiller(env, record->get()).Fill(object);
}

}  // namespace lumigram
