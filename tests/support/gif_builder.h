// Builders for pieces of GIF files, which "+" joins. They accept valid and invalid values.
#ifndef LUMIGRAM_TESTS_SUPPORT_GIF_BUILDER_H_
#define LUMIGRAM_TESTS_SUPPORT_GIF_BUILDER_H_

#include <algorithm>

#include "tests/support/bytes.h"

namespace lumigram::test {

// Colour tables consist of trailers: a walk with a wrong size of a table ends early.
inline Bytes GifColorTable(uint8_t packed) {
  return Bytes(packed & 0x80 ? 3u << ((packed & 7) + 1) : 0, 0x3B);
}

inline Bytes GifScreen(uint32_t width = 100, uint32_t height = 80,
                       std::string_view signature = "GIF89a", uint8_t packed = 0x80) {
  const Bytes screen = Le16(width) + Le16(height) + Bytes{packed, 0, 0};
  return Text(signature) + screen + GifColorTable(packed);
}

inline Bytes GifSubBlock(const Bytes& data) { return Bytes{uint8_t(data.size())} + data; }

// The bytes in sub-blocks of `step` bytes, and the terminator.
inline Bytes GifChain(const Bytes& data, size_t step = 255) {
  Bytes chain;
  for (size_t at = 0; at < data.size(); at += step)
    chain += GifSubBlock({&data[at], &data[at] + std::min(step, data.size() - at)});
  return chain + Bytes{0};
}

inline Bytes GifImage(uint32_t width = 40, uint32_t height = 30, uint8_t packed = 0x81) {
  const Bytes place = Bytes{0x2C, 1, 2, 3, 4} + Le16(width) + Le16(height) + Bytes{packed};
  return place + GifColorTable(packed) + Bytes{2} + GifChain({0x3B, 0x21, 0x2C, 0x3B}, 3);
}

inline Bytes GifComment(std::string_view text, size_t step = 255) {
  return Bytes{0x21, 0xFE} + GifChain(Text(text), step);
}

inline Bytes GifApplication(std::string_view identifier, const Bytes& chain) {
  return Bytes{0x21, 0xFF} + GifSubBlock(Text(identifier)) + chain;
}

// A label of 11 bytes, the name, the data.
inline Bytes GifBlob(std::string_view label, std::string_view name, const Bytes& data) {
  const std::string padded = std::string(label) + std::string(11 - label.size(), '\0');
  return GifApplication(padded, GifSubBlock(Text(name)) + GifChain(data));
}

inline const Bytes kGifControl = {0x21, 0xF9, 4, 5, 0x21, 0x2C, 0x3B, 0};
inline const Bytes kGifPopMarker = GifApplication("HTMLEMJI1.0", GifChain({7}));
inline const Bytes kGifPlainText = {0x21, 0x01, 1, 0x3B, 2, 0x3B, 0x3B, 0};
inline const Bytes kGifEnd = {0x3B};

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_GIF_BUILDER_H_
