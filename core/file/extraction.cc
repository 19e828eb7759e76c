#include "core/file/extraction.h"

#include <unistd.h>

#include "core/gif/gif_format.h"
#include "core/jpeg/jpeg_format.h"
#include "core/png/png_format.h"

namespace lumigram {
namespace {

Status ReadDocument(ByteSource& source, FileType type, char* xmlBuf, int32_t* height,
                    int32_t* width, int32_t* pop) {
  // Dimensions are at most 960 or, where a reader stores them before it refuses them, any 32 bits.
  uint32_t* const unsignedHeight = reinterpret_cast<uint32_t*>(height);
  uint32_t* const unsignedWidth = reinterpret_cast<uint32_t*>(width);
  switch (type) {
    case kFileTypeGif:
      return ReadGifDocument(source, xmlBuf, height, width, pop);
    case kFileTypeJpeg:
      return ReadJpegDocument(source, xmlBuf, unsignedHeight, unsignedWidth);
    default:
      return ReadPngDocument(source, xmlBuf, unsignedHeight, unsignedWidth);
  }
}

}  // namespace

Status ExtractDocument(ByteSource& source, FileType type, char* xmlBuf, int32_t* height,
                       int32_t* width, int32_t* pop) {
  if (Status s = ReadDocument(source, type, xmlBuf, height, width, pop); s != kOk) return s;
  return xmlBuf[0] == '\0' ? kNoDocument : kOk;
}

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
  ByteSource source(stream);
  return ExtractDocument(source, type, xmlBuf, height, width, pop);
}
