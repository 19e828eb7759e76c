// Groups the tag elements of a document by name, as a batch read delivers them to Java.
#include <string.h>

#include "core/base/status.h"
#include "core/document/document_format.h"
#include "core/document/tag_grouping.h"

namespace lumigram {
namespace {

// Ten names of 256 bytes and nine commas fill joinedNames exactly.
void StartGroup(TagCollection* tags, std::string_view name) {
  size_t joined = strlen(tags->joinedNames);
  if (joined > 0) tags->joinedNames[joined++] = ',';
  memcpy(tags->joinedNames + joined, name.data(), name.size());
  CopyText(tags->groupName[tags->groupCount], name);
  ++tags->groupCount;
}

// The caller has put the element into the next entry of the collection. Clears the entry unless the
// element is kept.
void KeepOrClear(TagCollection* tags, TagGrouping* grouping) {
  char(&name)[kLumigramMaxTextBytes + 1] = tags->tagName[tags->elementCount];
  char(&content)[kLumigramMaxContentBytes + 1] = tags->tagElement[tags->elementCount];
  const TagGrouping::Fate fate = grouping->Add(TextOf(name));
  if (!IsKept(fate)) {
    memset(name, 0, sizeof name);
    memset(content, 0, sizeof content);
    return;
  }
  if (fate == TagGrouping::Fate::kStartsGroup) StartGroup(tags, TextOf(name));
  ++tags->groupSize[grouping->Group()];
  ++tags->elementCount;
}

// No tags are delivered if one of them is unusable.
void ClearOutputs(TagCollection* tags) {
  memset(tags->joinedNames, 0, sizeof tags->joinedNames);
  memset(tags->tagName, 0, sizeof tags->tagName);
  memset(tags->tagElement, 0, sizeof tags->tagElement);
}

}  // namespace
}  // namespace lumigram

using namespace lumigram;

void CollectTagGroups(char* doc, TagCollection* tags) {
  TagGrouping grouping;
  for (int32_t taken = 0; taken < kLumigramMaxTags; ++taken) {
    char(&name)[kLumigramMaxTextBytes + 1] = tags->tagName[tags->elementCount];
    char(&content)[kLumigramMaxContentBytes + 1] = tags->tagElement[tags->elementCount];
    memset(name, 0, sizeof name);
    memset(content, 0, sizeof content);
    const int32_t status = GetElementTagContent(doc, kTagsStart, kTagsEnd, name, content);
    if (status == kTooLong) ClearOutputs(tags);
    if (status != kOk) return;
    KeepOrClear(tags, &grouping);
  }
}
