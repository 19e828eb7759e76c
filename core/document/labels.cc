// Reads the labels of a document into the record.
#include <string.h>

#include "core/base/status.h"
#include "core/document/document_format.h"

namespace lumigram {
namespace {

// Empties the labels of the record, so that none of an earlier picture remains visible.
void EmptyLabels(AttrInfo* attr) {
  attr->labelCount = attr->nameCount = attr->noteCount = attr->partCount = 0;
  for (int32_t i = 0; i < kLumigramMaxLabels; ++i)
    attr->name[i][0] = attr->note[i][0] = attr->part[i][0] = '\0';
}

// Reads name, note and part of one label, in any order, into entry i. Texts are copied without a
// terminator, so the whole entry is cleared first. A text that is refused is not counted.
int32_t ReadLabel(char* label, int32_t i, AttrInfo* attr) {
  memset(attr->name[i], 0, sizeof attr->name[i]);
  memset(attr->note[i], 0, sizeof attr->note[i]);
  memset(attr->part[i], 0, sizeof attr->part[i]);
  if (GetElementContent(label, kNameStart, kNameEnd, attr->name[i]) != kOk) return kFailed;
  if (GetStrLenUtf8(attr->name[i]) > kLumigramMaxCharacters) return kFailed;
  ++attr->nameCount;

  const int32_t note = GetElementContent(label, kNoteStart, kNoteEnd, attr->note[i]);
  if (note != kOk && note != kNoTags) return note;
  if (GetStrLenUtf8(attr->note[i]) > kLumigramMaxCharacters) return kFailed;
  ++attr->noteCount;

  const int32_t part = GetElementContent(label, kPartStart, kPartEnd, attr->part[i]);
  if (part != kOk && part != kNoTags) return part;
  ++attr->partCount;
  return kOk;
}

// Reads labels until none is left (kNoTags), ten are read (kOk), or one is not usable (any other
// status).
int32_t ReadLabels(const char* position, AttrInfo* attr) {
  char label[kLumigramDocumentBufferBytes];
  for (int32_t i = 0; i < kLumigramMaxLabels; ++i) {
    const char* const start = strstr(position, kLabelStart);
    const char* const end = strstr(position, kLabelEnd);
    if (int32_t state = CheckTagState(start, end); state != kOk) return state;
    ++attr->labelCount;
    position = end + strlen(kLabelEnd);
    if (end < start || position - start > kLumigramMaxDocumentBytes) return kFailed;
    const size_t size = static_cast<size_t>(position - start);
    memcpy(label, start, size);
    label[size] = '\0';
    if (int32_t status = ReadLabel(label, i, attr); status != kOk) return status;
  }
  return kOk;
}

}  // namespace
}  // namespace lumigram

using namespace lumigram;

int32_t GetLabelInfo(char* doc, AttrInfo* attr) {
  if (doc == nullptr || attr == nullptr) return kBadArgument;
  EmptyLabels(attr);
  if (!BeginsWith(std::string_view(doc), kRootStart)) return kBadLabels;
  char* const rootEnd = strstr(doc, kRootEnd);
  if (rootEnd == nullptr) return kBadLabels;
  rootEnd[strlen(kRootEnd)] = '\0';

  const int32_t end = ReadLabels(doc, attr);
  return attr->labelCount > 0 && (end == kOk || end == kNoTags) ? kOk : kBadLabels;
}
