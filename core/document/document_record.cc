#include "core/document/document_record.h"

#include <algorithm>

#include "core/base/text.h"
#include "core/base/utf8.h"
#include "core/document/blob_entries.h"
#include "core/document/document_format.h"
#include "core/document/document_walk.h"
#include "core/document/tag_grouping.h"

namespace lumigram {
namespace {

bool IsTooWide(std::string_view text) { return CountCharacters(text) > kLumigramMaxCharacters; }

class RecordFiller {
 public:
  RecordFiller(AttrInfo* attr, PictureSummary* summary) : attr_(*attr), summary_(*summary) {}

  void Fill(std::string_view document) {
    std::string_view root, after;
    if (!SplitDocument(document, &root, &after)) ++summary_.refusedLabels;
    CountStray(after);
    FoundElement element;
    while (TakeElement(kRootElements, &root, &element)) {
      CountStray(element.before);
      switch (static_cast<RootElement>(element.index)) {
        case kLabelElement:
          AddLabel(element.content);
          break;
        case kCategoryElement:
          AddOnce(element.content, attr_.category, &hasCategory_);
          break;
        case kTypeElement:
          AddOnce(element.content, attr_.type, &hasType_);
          break;
        case kTagsElement:
          AddTag(element.content);
          break;
      }
    }
    CountStray(root);
  }

 private:
  void CountStray(std::string_view text) {
    if (!IsBlank(text)) ++summary_.strayTexts;
  }

  // Copies a text if it fits the field. The summary counts its faults even if it does not fit.
  template <size_t N>
  bool CopyWhole(std::string_view text, char (&field)[N]) {
    if (!IsValidText(text)) ++summary_.invalidTexts;
    if (HoldsMarkup(text)) ++summary_.textsWithMarkup;
    if (text.size() >= N) return false;
    CopyText(field, text);
    return true;
  }

  // A label is left out, with all its texts, if its name is empty or does not fit the record.
  void AddLabel(std::string_view label) {
    if (labels_ == kLumigramMaxLabels) {
      ++summary_.furtherLabels;
      return;
    }
    std::string_view texts[std::size(kLabelElements)];
    bool found[std::size(kLabelElements)] = {};
    FoundElement element;
    while (TakeElement(kLabelElements, &label, &element)) {
      CountStray(element.before);
      if (found[element.index]) ++summary_.strayTexts;
      if (!found[element.index]) texts[element.index] = element.content;
      found[element.index] = true;
    }
    CountStray(label);
    const auto& [name, note, part] = texts;
    const bool isNamed = !name.empty() && CopyWhole(name, attr_.name[labels_]);
    bool isUsable = isNamed && !IsTooWide(name) && !IsTooWide(note);
    if (isNamed) {
      isUsable = CopyWhole(note, attr_.note[labels_]) && isUsable;
      isUsable = CopyWhole(part, attr_.part[labels_]) && isUsable;
      const char* const held = attr_.part[labels_++];
      if (held[0] != '\0' && GetPartNo(held) == 0) ++summary_.unknownParts;
    }
    if (!isUsable) ++summary_.refusedLabels;
    attr_.labelCount = attr_.nameCount = attr_.noteCount = attr_.partCount = labels_;
  }

  template <size_t N>
  void AddOnce(std::string_view text, char (&field)[N], bool* isThere) {
    if (*isThere || !CopyWhole(text, field)) ++summary_.refusedTexts;
    *isThere = true;
  }

  void AddTag(std::string_view group) {
    std::string_view name, content;
    if (!SplitTagGroup(group, &name, &content)) {
      ++summary_.refusedTags;
      return;
    }
    const bool isDelivered = tagsFound_++ < kLumigramMaxTags && IsKept(grouping_.Add(name));
    const bool isHeld = tags_ < kLumigramMaxTags && CopyWhole(name, attr_.tag[tags_].tagName) &&
                        CopyWhole(content, attr_.tag[tags_].tagElement);
    const bool isRefused = name.size() > kLumigramMaxTextBytes || IsTooWide(name) ||
                           content.size() > kLumigramMaxContentBytes;
    // Java checks element 0 to see whether there are tags.
    if (tagsFound_ == 1 && !isRefused && content.empty()) summary_.hiddenContents = 1;
    if (isRefused) ++summary_.refusedTags;
    if (!isRefused && (!isDelivered || name.empty())) ++summary_.droppedTags;
    if (!isHeld || name.empty()) {
      if (tags_ < kLumigramMaxTags) attr_.tag[tags_] = {};
      return;
    }
    if (RefersToThisPicture(content)) SetUri(content, &attr_.appExt[tags_]);
    ++tags_;
  }

  AttrInfo& attr_;
  PictureSummary& summary_;
  int32_t labels_ = 0;
  int32_t tags_ = 0;
  int32_t tagsFound_ = 0;
  bool hasCategory_ = false;
  bool hasType_ = false;
  TagGrouping grouping_;
};

}  // namespace

void FillRecord(std::string_view document, AttrInfo* attr, PictureSummary* summary) {
  RecordFiller(attr, summary).Fill(document);
}

}  // namespace lumigram
