#include "core/file/tag_info.h"

#include <string.h>

#include "core/document/document_format.h"
#include "core/file/extraction.h"

namespace lumigram {
namespace {

constexpr size_t kMaxTagName = 255;

// Cuts each element that it finds out of the document. The list ends before an unusable element and
// after an empty one.
Status TakeTags(char* document, const char* tagName, char results[10][1025]) {
  if (strlen(tagName) > kMaxTagName) return kBadArgument;
  char startTag[sizeof kTagsStart + kMaxTagName + sizeof kAttributeEnd];
  strcpy(startTag, kTagsStart);
  strcat(startTag, tagName);
  strcat(startTag, kAttributeEnd);
  for (int32_t i = 0; i < kLumigramMaxGroupSize; ++i) {
    if (GetElementContent(document, startTag, kTagsEnd, results[i]) != kOk || results[i][0] == '\0')
      break;
  }
  return kOk;
}

}  // namespace

Status LookUpTags(const PictureFile& picture, const char* tagName, char results[10][1025]) {
  char document[kLumigramDocumentBufferBytes] = {};
  int32_t height = 0, width = 0, pop = 0;
  if (Status s = picture.ReadDocument({document, &height, &width, &pop}); s != kOk) return s;
  return TakeTags(document, tagName, results);
}

Status LookUpTags(ByteSource& source, Kind kind, const char* tagName, char results[10][1025]) {
  char document[kLumigramDocumentBufferBytes] = {};
  int32_t height = 0, width = 0, pop = 0;
  const Status status = ExtractDocument(source, kind, {document, &height, &width, &pop});
  return status == kOk ? TakeTags(document, tagName, results) : status;
}

}  // namespace lumigram

using namespace lumigram;

int32_t GetTagInfo(FILE* stream, FileType fileType, const char* tagName, char results[10][1025]) {
  if (stream == nullptr || results == nullptr || tagName == nullptr) return kBadArgument;
  char document[kLumigramDocumentBufferBytes] = {};
  int32_t height = 0, width = 0, pop = 0;
  if (GetXmlString(stream, fileType, document, &height, &width, &pop) != kOk) return kBadArgument;
  return TakeTags(document, tagName, results);
}
