#include "core/write/document_builder.h"

#include <string.h>

#include "core/document/document_format.h"

namespace lumigram {
namespace {

// One byte less than a reader takes.
constexpr uint32_t kMaxWrittenBytes = kLumigramMaxDocumentBytes - 1;

}  // namespace

DocumentBuilder::DocumentBuilder(XmlStringInfo* document)
    : document_(document), text_(reinterpret_cast<uint8_t*>(document->text), kMaxWrittenBytes) {
  document->length = 0;
  document->text[0] = '\0';
  Format({kRootStart});
  (void)AppendFormatted();
}

Status DocumentBuilder::AddLabel(std::string_view name, std::string_view note,
                                 std::string_view part) {
  if (CountCharacters(name) > kLumigramMaxCharacters) return kTooManyCharacters;
  if (name.empty()) return kOk;
  if (CountCharacters(note) > kLumigramMaxCharacters) return kTooManyCharacters;
  Format({kLabelStart, kNameStart, name, kNameEnd});
  if (!note.empty()) Format({kNoteStart, note, kNoteEnd});
  if (!part.empty()) Format({kPartStart, part, kPartEnd});
  Format({kLabelEnd});
  return AppendFormatted();
}

Status DocumentBuilder::AddElement(std::string_view startTag, std::string_view content,
                                   std::string_view endTag) {
  if (content.empty()) return kOk;
  Format({startTag, content, endTag});
  return AppendFormatted();
}

Status DocumentBuilder::AddTagGroup(std::string_view name, std::string_view content) {
  Format({kTagsStart, name, kAttributeEnd, content, kTagsEnd});
  return AppendFormatted();
}

Status DocumentBuilder::Finish() {
  Format({kRootEnd});
  if (Status s = AppendFormatted(); s != kOk) return s;
  document_->length = static_cast<int32_t>(text_.Size());
  document_->text[text_.Size()] = '\0';
  return kOk;
}

void DocumentBuilder::Format(Pieces pieces) {
  for (std::string_view piece : pieces) {
    fits_ = fits_ && piece.size() <= sizeof(scratch_) - scratchSize_;
    if (!fits_) return;
    memcpy(scratch_ + scratchSize_, piece.data(), piece.size());
    scratchSize_ += piece.size();
  }
}

Status DocumentBuilder::AppendFormatted() {
  const bool appended = fits_ && text_.Put(std::string_view(scratch_, scratchSize_));
  scratchSize_ = 0;
  return appended ? kOk : kTooLong;
}

Status BuildDocument(const AttrInfo& attr, XmlStringInfo* document) {
  DocumentBuilder builder(document);
  for (int i = 0; i < kLumigramMaxLabels; ++i) {
    if (Status s =
            builder.AddLabel(TextOf(attr.name[i]), TextOf(attr.note[i]), TextOf(attr.part[i]));
        s != kOk) {
      return s;
    }
  }
  if (Status s = builder.AddElement(kCategoryStart, TextOf(attr.category), kCategoryEnd); s != kOk)
    return s;
  if (Status s = builder.AddElement(kTypeStart, TextOf(attr.type), kTypeEnd); s != kOk) return s;
  for (const TagEntry& tag : attr.tag) {
    if (tag.tagName[0] == '\0') continue;
    if (Status s = builder.AddTagGroup(TextOf(tag.tagName), TextOf(tag.tagElement)); s != kOk)
      return s;
  }
  return builder.Finish();
}

}  // namespace lumigram
