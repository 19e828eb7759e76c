// The layout of metadata in a JPEG file (docs/jpeg.md). All integers are big-endian.
//
//   start of image   FF D8
//   segment          FF, code, length (2, of itself and the data), data
//   start of scan    a segment, then the image data up to the first FF D9
//
//   comment (FE)     a document, when its data begin with the root tag
#ifndef LUMIGRAM_CORE_JPEG_JPEG_FORMAT_H_
#define LUMIGRAM_CORE_JPEG_JPEG_FORMAT_H_

#include <stdint.h>

#include "core/base/byte_source.h"
#include "core/base/status.h"
#include "core/document/reader_outputs.h"
#include "core/document/survey.h"

namespace lumigram {

inline constexpr uint8_t kMarkerPrefix = 0xFF;
inline constexpr uint8_t kStartOfImage = 0xD8;
inline constexpr uint8_t kEndOfImage = 0xD9;
inline constexpr uint8_t kStartOfScan = 0xDA;
inline constexpr uint8_t kComment = 0xFE;

inline constexpr uint32_t kSegmentLengthSize = 2;

// The prefix is 0xFF. Exception: the prefix of the first marker after the start of image is not
// checked, and is copied unchanged.
struct Marker {
  uint8_t prefix;
  uint8_t code;
};

inline Status ReadFirstMarker(ByteSource& source, Marker* marker) {
  uint8_t start[2];
  if (!source.Read(start) || start[0] != kMarkerPrefix || start[1] != kStartOfImage) {
    return kMalformed;
  }
  return source.ReadByte(&marker->prefix) && source.ReadByte(&marker->code) ? kOk : kMalformed;
}

// Fill bytes are not supported: the byte after the prefix is always the code.
inline Status ReadNextMarker(ByteSource& source, Marker* marker) {
  if (!source.ReadByte(&marker->prefix) || marker->prefix != kMarkerPrefix) return kMalformed;
  return source.ReadByte(&marker->code) ? kOk : kMalformed;
}

// As GetXmlStringFromJpg(), from any source.
Status ReadJpegDocument(ByteSource& source, const ReaderOutputs& out);

// Fills the survey of a picture that the reader accepts. There are no blobs to visit. Returns kOk;
// kMalformed or kBadStream if the walk cannot continue.
Status SurveyJpeg(ByteSource& source, Survey* survey, const BlobVisitor& visit);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_JPEG_JPEG_FORMAT_H_
