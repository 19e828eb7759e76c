// How metadata sits in a JPEG file (docs/jpeg.md). All integers are big-endian.
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

namespace lumigram {

inline constexpr uint8_t kMarkerPrefix = 0xFF;
inline constexpr uint8_t kStartOfImage = 0xD8;
inline constexpr uint8_t kEndOfImage = 0xD9;
inline constexpr uint8_t kStartOfScan = 0xDA;
inline constexpr uint8_t kComment = 0xFE;

inline constexpr uint32_t kSegmentLengthSize = 2;

// The prefix is 0xFF, but for that of the first marker behind the start of image: it is not looked
// at, and is carried along as it is.
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

// No fill bytes: what follows the prefix is the code, whatever it is.
inline Status ReadNextMarker(ByteSource& source, Marker* marker) {
  if (!source.ReadByte(&marker->prefix) || marker->prefix != kMarkerPrefix) return kMalformed;
  return source.ReadByte(&marker->code) ? kOk : kMalformed;
}

// As GetXmlStringFromJpg(), from any source.
Status ReadJpegDocument(ByteSource& source, char* xmlBuf, uint32_t* height, uint32_t* width);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_JPEG_JPEG_FORMAT_H_
