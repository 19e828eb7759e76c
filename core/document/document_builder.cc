#include "core/document/document_builder.h"

#include <string.h>

#include <initializer_list>
#include <string_view>

#include "core/base/output_buffer.h"
#include "core/base/text.h"
#include "core/document/document_format.h"

namespace lumigram {
namespace {

// One byte less than a reader accepts.
constexpr uint32_t kMaxWrittenBytes = kLumigramMaxDocumentBytes - 1;

// Builds a document in memory that it borrows. After the first fault nothing more is added, and
// Finish() returns that fault. The texts of a label are checked before any of it is added: a text
// over its limit is reported, even if the document is also full.
class DocumentBuilder {
 public:
  explicit DocumentBuilder(XmlStringInfo* document)
      : text_(reinterpret_cast<uint8_t*>(document->text), kMaxWrittenBytes) {
    Add({kRootStart});
  }

  // The note of a label without a name is not checked.
  void AddLabel(std::string_view name, std::string_view note, std::string_view part) {
    if (CountCharacters(name) > kLumigramMaxCharacters) Refuse(kTooManyCharacters);
    if (name.empty()) return;
    if (CountCharacters(note) > kLumigramMaxCharacters) Refuse(kTooManyCharacters);
    const bool hasNote = !note.empty(), hasPart = !part.empty();
    Add({kLabelStart, kNameStart, name, kNameEnd, hasNote ? kNoteStart : "", note,
         hasNote ? kNoteEnd : "", hasPart ? kPartStart : "", part, hasPart ? kPartEnd : "",
         kLabelEnd});
  }

  void AddElement(std::string_view startTag, std::string_view content, std::string_view endTag) {
    if (!content.empty()) Add({startTag, content, endTag});
  }

  void AddTagGroup(std::string_view name, std::string_view content) {
    Add({kTagsStart, name, kAttributeEnd, content, kTagsEnd});
  }

  Status Finish(int32_t* length) {
    Add({kRootEnd});
    *length = fault_ == kOk ? static_cast<int32_t>(text_.Size()) : 0;
    return fault_;
  }

 private:
  void Refuse(Status fault) {
    if (fault_ == kOk) fault_ = fault;
  }

  void Add(std::initializer_list<std::string_view> pieces) {
    if (fault_ != kOk) return;
    size_t size = 0;
    for (std::string_view piece : pieces) size += piece.size();
    uint8_t* room = text_.Claim(size);
    if (room == nullptr) return Refuse(kTooLong);
    for (std::string_view piece : pieces) {
      memcpy(room, piece.data(), piece.size());
      room += piece.size();
    }
  }

  OutputBuffer text_;
  Status fault_ = kOk;
};

}  // namespace

Status BuildDocument(const AttrInfo& attr, XmlStringInfo* document) {
  DocumentBuilder builder(document);
  for (int i = 0; i < kLumigramMaxLabels; ++i)
    builder.AddLabel(TextOf(attr.name[i]), TextOf(attr.note[i]), TextOf(attr.part[i]));
  builder.AddElement(kCategoryStart, TextOf(attr.category), kCategoryEnd);
  builder.AddElement(kTypeStart, TextOf(attr.type), kTypeEnd);
  for (const TagEntry& tag : attr.tag) {
    if (tag.tagName[0] != '\0') builder.AddTagGroup(TextOf(tag.tagName), TextOf(tag.tagElement));
  }
  const Status status = builder.Finish(&document->length);
  document->text[document->length] = '\0';
  return status;
}

}  // namespace lumigram
