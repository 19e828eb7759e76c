// Reads a JPEG picture's document and dimensions, from any stream: one that cannot be measured,
// such as a pipe, is read from front to back.
#include <string.h>

#include "core/base/bytes.h"
#include "core/document/document_format.h"
#include "core/jpeg/jpeg_format.h"

namespace lumigram {
namespace {

// Precision (1), height (2), width (2).
constexpr uint32_t kFrameFieldsSize = 5;

struct Found {
  const ReaderOutputs& out;
  bool hasDocument = false;
  bool hasFrame = false;
};

// Whether it begins a baseline, extended or progressive frame. Lossless and differential frames are
// not used for small pictures, and are skipped like any other segment.
bool IsFrameHeader(uint8_t code) {
  return code == 0xC0 || code == 0xC1 || code == 0xC2 || code == 0xC9 || code == 0xCA;
}

bool ReadDataSize(ByteSource& source, uint32_t* size) {
  uint16_t length;
  if (!source.ReadBe16(&length) || length < kSegmentLengthSize) return false;
  *size = length - kSegmentLengthSize;
  return true;
}

// Skips n bytes that must be there: the last of them is read, because a skip may end early.
bool SkipWhole(ByteSource& source, uint32_t n) {
  uint8_t last;
  return n == 0 || (source.Skip(n - 1) && source.ReadByte(&last));
}

Status ReadComment(ByteSource& source, Found* found) {
  uint16_t length;
  if (!source.ReadBe16(&length)) return kMalformed;
  // A length that does not count itself is refused like one over the limit.
  if (length < kSegmentLengthSize) return kTooLong;
  const uint32_t size = length - kSegmentLengthSize;
  if (size > kLumigramMaxDocumentBytes) return kTooLong;
  uint8_t text[kLumigramMaxDocumentBytes];
  const std::span<uint8_t> read(text, size);
  if (!source.Read(read)) return kMalformed;
  if (!found->hasDocument && BeginsWith(read, kRootStart)) {
    memcpy(found->out.document, text, size);
    found->hasDocument = true;
  }
  return kOk;
}

Status ReadFrameHeader(ByteSource& source, Found* found) {
  uint32_t size;
  uint8_t fields[kFrameFieldsSize];
  if (!ReadDataSize(source, &size) || size < kFrameFieldsSize || !source.Read(fields) ||
      !SkipWhole(source, size - kFrameFieldsSize)) {
    return kMalformed;
  }
  const int32_t height = LoadBe16(fields + 1);
  const int32_t width = LoadBe16(fields + 3);
  if (height > kLumigramMaxPixels || width > kLumigramMaxPixels) return kDimensions;
  *found->out.height = height;
  *found->out.width = width;
  found->hasFrame = true;
  return kOk;
}

Status SkipSegment(ByteSource& source) {
  uint32_t size;
  return ReadDataSize(source, &size) && SkipWhole(source, size) ? kOk : kMalformed;
}

// The image data must contain an end of image; nothing else in them is checked. If the last two
// bytes of the file are one, the image data need not be read.
Status FindEndOfImage(ByteSource& source) {
  const uint64_t start = source.Position();
  const uint64_t left = source.Remaining();
  if (left >= 2) {
    uint8_t tail[2];
    if (source.Skip(left - 2) && source.Read(tail) && tail[0] == kMarkerPrefix &&
        tail[1] == kEndOfImage) {
      return kOk;
    }
    if (!source.Back(source.Position() - start)) return kMalformed;
  }
  return source.SkipPast(kMarkerPrefix, kEndOfImage) ? kOk : kMalformed;
}

Status ReadSegment(ByteSource& source, uint8_t code, Found* found) {
  if (code == kComment) return ReadComment(source, found);
  return IsFrameHeader(code) ? ReadFrameHeader(source, found) : SkipSegment(source);
}

// Reads all segments up to the end of image.
Status ReadSegments(ByteSource& source, Found* found) {
  Marker marker;
  if (Status s = ReadFirstMarker(source, &marker); s != kOk) return s;
  while (marker.code != kEndOfImage) {
    if (Status s = ReadSegment(source, marker.code, found); s != kOk) return s;
    if (marker.code == kStartOfScan) return FindEndOfImage(source);
    if (Status s = ReadNextMarker(source, &marker); s != kOk) return s;
  }
  return kOk;
}

}  // namespace

Status ReadJpegDocument(ByteSource& source, const ReaderOutputs& out) {
  (void)source.Measure();  // A measured source reads less; one that is not measured works as well.
  Found found{out};
  if (Status s = ReadSegments(source, &found); s != kOk) return s;
  return found.hasFrame ? kOk : kNoFrameHeader;
}

}  // namespace lumigram

using namespace lumigram;

int32_t GetXmlStringFromJpg(FILE* stream, char* xmlBuf, uint32_t* height, uint32_t* width) {
  if (stream == nullptr || xmlBuf == nullptr) return kBadArgument;
  ByteSource source(stream);
  return ReadJpegDocument(source, {xmlBuf, reinterpret_cast<int32_t*>(height),
                                   reinterpret_cast<int32_t*>(width), nullptr});
}
