// The tag elements of a document, grouped by name as a batch read hands them to Java.
#include <string.h>

#include "core/base/status.h"
#include "core/document/document_format.h"

namespace lumigram {
namespace {

// The group that an element of this name joins: the first whose name begins with it, so that "ab"
// joins "abc", and the empty name joins the first group there is. groupCount when there is none.
int32_t FindGroup(const TagCollection& tags, std::string_view name) {
  int32_t group = 0;
  while (group < tags.groupCount && !BeginsWith(TextOf(tags.groupName[group]), name)) ++group;
  return group;
}

// Ten names of 256 bytes and nine commas fill joinedNames exactly.
void StartGroup(TagCollection* tags, std::string_view name) {
  size_t joined = strlen(tags->joinedNames);
  if (joined > 0) tags->joinedNames[joined++] = ',';
  memcpy(tags->joinedNames + joined, name.data(), name.size());
  CopyText(tags->groupName[tags->groupCount], name);
  ++tags->groupCount;
}

void Keep(TagCollection* tags, std::string_view name, std::string_view content) {
  const int32_t group = FindGroup(*tags, name);
  if (group == tags->groupCount) {
    if (group == kLumigramMaxTagGroups) return;
    StartGroup(tags, name);
  }
  if (tags->groupSize[group] == kLumigramMaxGroupSize) return;
  CopyText(tags->tagName[tags->elementCount], name);
  CopyText(tags->tagElement[tags->elementCount], content);
  ++tags->elementCount;
  ++tags->groupSize[group];
}

// One unusable element takes all of them with it.
void ClearOutputs(TagCollection* tags) {
  memset(tags->joinedNames, 0, sizeof tags->joinedNames);
  memset(tags->tagName, 0, sizeof tags->tagName);
  memset(tags->tagElement, 0, sizeof tags->tagElement);
}

}  // namespace
}  // namespace lumigram

using namespace lumigram;

void CollectTagGroups(char* doc, TagCollection* tags) {
  for (int32_t taken = 0; taken < kLumigramMaxTags; ++taken) {
    char name[kLumigramMaxTextBytes + 1] = {};
    char content[kLumigramMaxContentBytes + 1] = {};
    const int32_t status = GetElementTagContent(doc, kTagsStart, kTagsEnd, name, content);
    if (status == kTooLong) ClearOutputs(tags);
    if (status != kOk) return;
    Keep(tags, TextOf(name), TextOf(content));
  }
}
