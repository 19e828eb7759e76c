// Picks the reader by the picture's type, under the size limit.
#include <unistd.h>

#include "core/base/status.h"
#include "lumigram.h"

namespace lumigram {
namespace {

int32_t ReadDocument(FILE* stream, FileType type, char* xmlBuf, int32_t* height, int32_t* width,
                     int32_t* pop) {
  // Dimensions are at most 960 or, where a reader stores them before it refuses them, any 32 bits.
  uint32_t* const unsignedHeight = reinterpret_cast<uint32_t*>(height);
  uint32_t* const unsignedWidth = reinterpret_cast<uint32_t*>(width);
  switch (type) {
    case kFileTypeGif:
      return GetXmlStringFromGif(stream, xmlBuf, height, width, pop);
    case kFileTypeJpeg:
      return GetXmlStringFromJpg(stream, xmlBuf, unsignedHeight, unsignedWidth);
    default:
      return GetXmlStringFromPng(stream, xmlBuf, unsignedHeight, unsignedWidth);
  }
}

}  // namespace
}  // namespace lumigram

using namespace lumigram;

int32_t GetXmlString(FILE* stream, FileType type, char* xmlBuf, int32_t* height, int32_t* width,
                     int32_t* pop) {
  if (stream == nullptr || xmlBuf == nullptr) return kBadArgument;
  if (type < kFileTypeGif || type > kFileTypePng) return kBadArgument;
  int32_t size = 0;
  if (CommonGetFileSize(stream, &size) != kOk || size > kLumigramMaxPictureBytes)
    return kBadArgument;
  // An empty file is most likely one that somebody is about to write.
  if (size == 0) sleep(1);
  const int32_t status = ReadDocument(stream, type, xmlBuf, height, width, pop);
  if (status != kOk) return status;
  return xmlBuf[0] == '\0' ? kNoDocument : kOk;
}
