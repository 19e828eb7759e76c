// Elements are found by exact search and cut out of the document, so that the next search finds the
// next one.
#include <string.h>

#include "core/base/status.h"
#include "core/document/document_format.h"

namespace lumigram {
namespace {

// An element within its document: its start tag begins at start, its content runs from content to
// end, and the text after its end tag begins at rest. ContentSize() is negative when the end tag
// begins before the content does; each caller refuses that with its own status.
struct Element {
  char* start;
  const char* content;
  const char* end;
  const char* rest;

  ptrdiff_t ContentSize() const { return end - content; }
};

void CutOut(const Element& element) {
  memmove(element.start, element.rest, strlen(element.rest) + 1);
}

bool IsTagGroup(std::string_view startTag) {
  constexpr std::string_view kTagGroup = kTagsStart;
  return startTag.size() > kTagGroup.size() && BeginsWith(startTag, kTagGroup);
}

}  // namespace

uint32_t CountCharacters(std::string_view text) {
  uint32_t count = 0;
  for (char c : text) {
    const uint8_t byte = static_cast<uint8_t>(c);
    count += (byte >= 0x20 && byte <= 0x7E) || (byte >= 0xC0 && byte <= 0xF7);
  }
  return count;
}

}  // namespace lumigram

using namespace lumigram;

int32_t CheckTagState(const char* start, const char* end) {
  if (start != nullptr) return end != nullptr ? kOk : kStartTagOnly;
  return end != nullptr ? kEndTagOnly : kNoTags;
}

uint32_t GetStrLenUtf8(const char* text) { return text == nullptr ? 0 : CountCharacters(text); }

// The search for the end tag begins at the start tag.
int32_t GetElementContent(char* doc, const char* startTag, const char* endTag, char* out) {
  if (doc == nullptr || startTag == nullptr || endTag == nullptr) return kFailed;
  char* const start = strstr(doc, startTag);
  const char* const end = start == nullptr ? nullptr : strstr(start, endTag);
  const int32_t state = CheckTagState(start, end);
  if (state != kOk || out == nullptr) return state;

  const Element element = {start, start + strlen(startTag), end, end + strlen(endTag)};
  const ptrdiff_t limit = IsTagGroup(startTag) ? kLumigramMaxContentBytes : kLumigramMaxTextBytes;
  if (element.ContentSize() < 0 || element.ContentSize() > limit) return kFailed;
  memcpy(out, element.content, static_cast<size_t>(element.ContentSize()));
  CutOut(element);
  return kOk;
}

// Both searches begin at the start of the document: the element is malformed if an end tag precedes
// its start tag.
int32_t GetElementTagContent(char* doc, const char* startTag, const char* endTag, char* nameOut,
                             char* contentOut) {
  if (doc == nullptr || startTag == nullptr || endTag == nullptr) return kFailed;
  char* const start = strstr(doc, startTag);
  const char* const end = strstr(doc, endTag);
  const int32_t state = CheckTagState(start, end);
  if (state != kOk || nameOut == nullptr || contentOut == nullptr) return state;

  const char* const attributeEnd = strstr(start, kAttributeEnd);
  if (attributeEnd == nullptr) return kTooLong;
  const char* const name = start + strlen(startTag);
  const ptrdiff_t nameSize = attributeEnd - name;
  const Element element = {start, attributeEnd + strlen(kAttributeEnd), end, end + strlen(endTag)};
  if (element.ContentSize() < 0 || element.ContentSize() > kLumigramMaxContentBytes)
    return kTooLong;
  if (nameSize < 0 || nameSize > kLumigramMaxTextBytes) return kTooLong;
  memcpy(nameOut, name, static_cast<size_t>(nameSize));
  if (CountCharacters({nameOut, static_cast<size_t>(nameSize)}) > kLumigramMaxCharacters)
    return kTooLong;
  memcpy(contentOut, element.content, static_cast<size_t>(element.ContentSize()));
  CutOut(element);
  return kOk;
}
