// The contents of one tag group of a picture.
#include <string.h>

#include "core/base/status.h"
#include "core/document/document_format.h"

namespace lumigram {
namespace {

constexpr size_t kMaxTagName = 255;

}  // namespace
}  // namespace lumigram

using namespace lumigram;

int32_t GetTagInfo(FILE* stream, FileType fileType, const char* tagName, char results[10][1025]) {
  if (stream == nullptr || results == nullptr || tagName == nullptr) return kBadArgument;
  char document[kLumigramDocumentBufferBytes] = {};
  int32_t height = 0, width = 0, pop = 0;
  if (GetXmlString(stream, fileType, document, &height, &width, &pop) != kOk) return kBadArgument;

  const size_t nameSize = strlen(tagName);
  if (nameSize > kMaxTagName) return kBadArgument;
  char startTag[sizeof kTagsStart + kMaxTagName + sizeof kAttributeEnd];
  strcpy(startTag, kTagsStart);
  strcat(startTag, tagName);
  strcat(startTag, kAttributeEnd);

  // Each element found is cut out of the document; an empty one ends the list.
  for (int32_t k = 0; k < kLumigramMaxGroupSize; ++k) {
    if (GetElementContent(document, startTag, kTagsEnd, results[k]) != kOk || results[k][0] == '\0')
      break;
  }
  return kOk;
}
