#include "tests/support/gif_builder.h"

#include <algorithm>

namespace lumigram::test {

static Bytes WithColorTable(Bytes bytes, uint8_t packed) {
  const size_t size = packed & 0x80 ? 3u << ((packed & 7) + 1) : 0;
  bytes.resize(bytes.size() + size, 0x3B);
  return bytes;
}

Bytes GifScreen(uint32_t width, uint32_t height, std::string_view signature, uint8_t packed) {
  const Bytes screen = Le16(width) + Le16(height) + Bytes{packed, 0, 0};
  return WithColorTable(Text(signature) + screen, packed);
}

Bytes GifImage(uint32_t width, uint32_t height, uint8_t packed) {
  const Bytes place = {0x2C, 1, 2, 3, 4};
  const Bytes image = place + Le16(width) + Le16(height) + Bytes{packed};
  return WithColorTable(image, packed) + Bytes{2} + GifChain({0x3B, 0x21, 0x2C, 0x3B}, 3);
}

static Bytes SubBlock(const Bytes& data) { return Bytes{static_cast<uint8_t>(data.size())} + data; }

Bytes GifChain(const Bytes& data, size_t step) {
  Bytes chain;
  for (size_t at = 0; at < data.size(); at += step)
    chain += SubBlock({&data[at], &data[at] + std::min(step, data.size() - at)});
  return chain + Bytes{0};
}

Bytes GifComment(std::string_view text, size_t step) {
  return Bytes{0x21, 0xFE} + GifChain(Text(text), step);
}

Bytes GifApplication(std::string_view identifier, const Bytes& chain) {
  return Bytes{0x21, 0xFF} + SubBlock(Text(identifier)) + chain;
}

Bytes GifBlob(std::string_view label, std::string_view name, const Bytes& data) {
  const std::string padding(11 - label.size(), '\0');
  return GifApplication(std::string(label) + padding, SubBlock(Text(name)) + GifChain(data));
}

}  // namespace lumigram::test
