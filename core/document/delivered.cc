#include "core/document/delivered.h"

#include <stddef.h>
#include <string.h>

#include "core/base/status.h"
#include "core/document/document_format.h"

namespace lumigram {
namespace {

// An element that is missing or over its limit is not delivered.
template <size_t N>
bool TakeText(char* document, const char* startTag, const char* endTag, char (&text)[N]) {
  memset(text, 0, N);
  return GetElementContent(document, startTag, endTag, text) == kOk;
}

}  // namespace

// Tags are cut out first, because a search for category or type would also find one within the
// content of a tag.
void TakeDocumentApart(char* document, DeliveredDocument* out) {
  out->hasLabels = GetLabelInfo(document, &out->attr) == kOk;
  memset(&out->tags, 0, offsetof(TagCollection, tagName));
  CollectTagGroups(document, &out->tags);
  out->hasCategory = TakeText(document, kCategoryStart, kCategoryEnd, out->attr.category);
  out->hasType = TakeText(document, kTypeStart, kTypeEnd, out->attr.type);
}

}  // namespace lumigram
