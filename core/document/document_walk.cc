#include "core/document/document_walk.h"

#include "core/document/document_format.h"

namespace lumigram {
namespace {

constexpr size_t kNowhere = std::string_view::npos;

std::string_view From(std::string_view text, size_t at) {
  text.remove_prefix(at);
  return text;
}

bool Holds(std::string_view text, std::string_view part) { return text.find(part) != kNowhere; }

}  // namespace

const ElementTags kRootElements[4] = {{kLabelStart, kLabelEnd},
                                      {kCategoryStart, kCategoryEnd},
                                      {kTypeStart, kTypeEnd},
                                      {kTagsStart, kTagsEnd}};
const ElementTags kLabelElements[3] = {
    {kNameStart, kNameEnd}, {kNoteStart, kNoteEnd}, {kPartStart, kPartEnd}};

bool TakeElement(std::span<const ElementTags> tags, std::string_view* text, FoundElement* element) {
  size_t start = kNowhere;
  for (size_t i = 0; i < tags.size(); ++i) {
    const size_t at = text->find(tags[i].start);
    if (at >= start || !Holds(From(*text, at + tags[i].start.size()), tags[i].end)) continue;
    start = at;
    element->index = i;
  }
  if (start == kNowhere) return false;
  const ElementTags& found = tags[element->index];
  const std::string_view content = From(*text, start + found.start.size());
  const size_t size = content.find(found.end);
  element->before = {text->data(), start};
  element->content = {content.data(), size};
  *text = From(content, size + found.end.size());
  return true;
}

bool SplitDocument(std::string_view document, std::string_view* root, std::string_view* after) {
  constexpr std::string_view kStart = kRootStart, kEnd = kRootEnd;
  const std::string_view content = From(document, kStart.size());
  const size_t size = content.find(kEnd);
  const bool isClosed = size != kNowhere;
  *root = {content.data(), isClosed ? size : content.size()};
  *after = isClosed ? From(content, size + kEnd.size()) : std::string_view();
  return isClosed;
}

bool SplitTagGroup(std::string_view group, std::string_view* name, std::string_view* content) {
  constexpr std::string_view kEnd = kAttributeEnd;
  const size_t size = group.find(kEnd);
  if (size == kNowhere) return false;
  *name = {group.data(), size};
  *content = From(group, size + kEnd.size());
  return true;
}

bool IsBlank(std::string_view text) {
  for (char c : text) {
    if (c != ' ' && c != '\t' && c != '\r' && c != '\n') return false;
  }
  return true;
}

bool HoldsMarkup(std::string_view text) {
  for (const ElementTags& tags : kRootElements) {
    if (Holds(text, tags.start) || Holds(text, tags.end)) return true;
  }
  for (const ElementTags& tags : kLabelElements) {
    if (Holds(text, tags.start) || Holds(text, tags.end)) return true;
  }
  return Holds(text, kRootStart) || Holds(text, kRootEnd);
}

}  // namespace lumigram
