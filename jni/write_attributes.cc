// Writes the metadata of a Java attribute object into a picture.
#include <stdlib.h>
#include <string.h>

#include "core/document/document_format.h"
#include "core/file/picture_file.h"
#include "core/write/write_picture.h"
#include "jni/native_methods.h"
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
    {"mName", "[Ljava/lang/String;"},
    {"mNote", "[Ljava/lang/String;"},
    {"mPart", "[B"},
    {"mCategory", "Ljava/lang/String;"},
    {"mType", "Ljava/lang/String;"},
    {"mTags", "[Ljava/lang/String;"},
    {"mTagsElement", "[Ljava/lang/String;"},
    {"mApplicationExtensionLabelName", "[Ljava/lang/String;"},
    {"mApplicationExtensionBinaryDataUri", "[Ljava/lang/String;"},
};

// The values of an attribute object's fields.
class AttributeValues {
 public:
  explicit AttributeValues(JNIEnv* env) : env_(env) {}
  ~AttributeValues() {
    for (jobject value : values_) {
      if (value != nullptr) env_->DeleteLocalRef(value);
    }
  }
  AttributeValues(const AttributeValues&) = delete;
  AttributeValues& operator=(const AttributeValues&) = delete;

  // Of the arrays only that of the tag names may be null: there are no tags then.
  Status Take(jobject attr) {
    const LocalRef<jclass> type(env_, env_->GetObjectClass(attr));
    if (type.Get() == nullptr) return kBadField;
    for (int f = 0; f < kFieldCount; ++f) {
      const jfieldID id = FindField(env_, type.Get(), kFields[f]);
      if (id == nullptr) return kBadField;
      LocalRef<jobject> value(env_, env_->GetObjectField(attr, id));
      if (value.Failed()) return kBadField;
      values_[f] = value.Release();
      const bool isArray = kFields[f].signature[0] == '[';
      if (values_[f] == nullptr && isArray && f != kTags) return kBadField;
      if (isArray) lengths_[f] = LengthOf(env_, static_cast<jarray>(values_[f]));
      if (lengths_[f] < 0) return kBadField;
    }
    return kOk;
  }

  // Of an array that is not there, none.
  jsize Length(Field field) const { return lengths_[field]; }
  jstring String(Field field) const { return static_cast<jstring>(values_[field]); }
  jobjectArray Strings(Field field) const { return static_cast<jobjectArray>(values_[field]); }
  jbyteArray Bytes(Field field) const { return static_cast<jbyteArray>(values_[field]); }

 private:
  JNIEnv* const env_;
  jobject values_[kFieldCount] = {};
  jsize lengths_[kFieldCount] = {};
};

// Clearing the record whole would take as long as writing a small picture into memory.
void EmptyTexts(AttrInfo* attr) {
  for (auto& text : attr->name) text[0] = '\0';
  for (auto& text : attr->note) text[0] = '\0';
  for (auto& text : attr->part) text[0] = '\0';
  attr->category[0] = attr->type[0] = '\0';
  for (TagEntry& tag : attr->tag) tag.tagName[0] = tag.tagElement[0] = '\0';
  for (AppExtEntry& entry : attr->appExt)
    entry.labelName[0] = entry.binaryDataUri[0] = entry.fileName[0] = '\0';
}

// One blob's name must not be another's: the container is searched by it.
bool IsNameTaken(const AttrInfo& attr, int entry) {
  const char* const name = attr.appExt[entry].fileName;
  if (name[0] == '\0') return false;
  for (int i = entry - 1; i >= 0; --i) {
    if (strcmp(attr.appExt[i].fileName, name) == 0) return true;
  }
  return false;
}

// Copies one object into a record of empty texts.
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
  // Entry i of an array of strings; past its end there are null entries.
  LocalRef<jstring> Entry(Field field, int i) {
    const bool isThere = i < values_.Length(field);
    return {env_, isThere ? env_->GetObjectArrayElement(values_.Strings(field), i) : nullptr};
  }

  // Most texts of an object are empty, as their fields are.
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

  // What belongs to a tag name: its content and, with both label and URI, a blob.
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

  // A content that refers to a blob of this picture keeps it there.
  Status FillContent(jstring content, int i) {
    const JavaText text(env_, content);
    if (text.Get() == nullptr) return kBadField;
    CopyText(attr_.tag[i].tagElement, text.Get());
    return BeginsWith(std::string_view(text.Get()), kThisPicture) ? SetUri(text.Get(), i) : kOk;
  }

  // The tag then refers to the blob, whatever its own content is.
  Status FillBlob(jstring uri, int i) {
    const JavaText text(env_, uri);
    if (text.Get() == nullptr) return kBadField;
    if (Status s = SetUri(text.Get(), i); s != kOk) return s;
    char(&element)[kLumigramMaxContentBytes + 1] = attr_.tag[i].tagElement;
    CopyText(element, kThisPicture);
    static_assert(kThisPicture.size() + sizeof(AppExtEntry::fileName) <= sizeof element);
    strcpy(element + kThisPicture.size(), attr_.appExt[i].fileName);
    return IsNameTaken(attr_, i) ? kDuplicateBlob : kOk;
  }

  Status SetUri(const char* uri, int i) {
    const char* const slash = strrchr(uri, '/');
    if (slash == nullptr) return kBadField;
    CopyText(attr_.appExt[i].binaryDataUri, uri);
    CopyText(attr_.appExt[i].fileName, slash + 1);
    return kOk;
  }

  JNIEnv* const env_;
  AttrInfo& attr_;
  AttributeValues values_;
};

Status Fill(JNIEnv* env, jobject object, AttrInfo* attr) {
  return RecordFiller(env, attr).Fill(object);
}

// Java learns that the picture was not written, not why.
Status Write(JNIEnv* env, jstring path, const AttrInfo& attr) {
  const JavaText text(env, path);
  if (text.Get() == nullptr) return kBadField;
  PictureFile picture;
  if (Status s = picture.Open(text.Get()); s != kOk) return s;
  ByteSource source = picture.Source();
  return WritePicture(source, text.Get(), attr, picture.Type()) == kOk ? kOk : kTooLong;
}

}  // namespace
}  // namespace lumigram

using namespace lumigram;

jint Java_lumigram_jni_LumigramJni_setLumigramAttrInfo(JNIEnv* env, jclass, jstring path,
                                                       jobject attr) {
  if (path == nullptr || attr == nullptr) return kNullArgument;
  const ScopedBlock<AttrInfo> record(static_cast<AttrInfo*>(malloc(sizeof(AttrInfo))));
  if (record == nullptr) return kNoRoom;
  EmptyTexts(record.get());
  if (Status s = Fill(env, attr, record.get()); s != kOk) return s;
  return Write(env, path, *record);
}
