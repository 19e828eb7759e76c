// Builders for pieces of JPEG files, which "+" joins. They accept valid and invalid values.
#ifndef LUMIGRAM_TESTS_SUPPORT_JPEG_BUILDER_H_
#define LUMIGRAM_TESTS_SUPPORT_JPEG_BUILDER_H_

#include "tests/support/bytes.h"

namespace lumigram::test {

inline const Bytes kJpegStart = {0xFF, 0xD8};
inline const Bytes kJpegEnd = {0xFF, 0xD9};

inline Bytes JpegSegmentClaiming(uint32_t length, uint8_t code, const Bytes& data) {
  return Bytes{0xFF, code} + Be16(length) + data;
}
inline Bytes JpegSegment(uint8_t code, const Bytes& data) {
  return JpegSegmentClaiming(uint32_t(data.size()) + 2, code, data);
}
inline Bytes JpegComment(std::string_view text) { return JpegSegment(0xFE, Text(text)); }
inline Bytes JpegFrame(uint32_t width = 32, uint32_t height = 16, uint8_t code = 0xC0) {
  return JpegSegment(code, Bytes{8} + Be16(height) + Be16(width) + Bytes{1, 1, 0x11, 0});
}

// The image data have an escaped FF, a restart marker, D9 without FF, and FF as the last byte.
inline const Bytes kJpegScan =
    JpegSegment(0xDA, {1, 1, 0, 0, 63, 0}) + Bytes{5, 0xFF, 0, 6, 0xFF, 0xD0, 0xD9, 0xFF};

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_JPEG_BUILDER_H_
