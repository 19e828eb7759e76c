// Builders for pieces of PNG files, which "+" joins. They accept valid and invalid values.
#ifndef LUMIGRAM_TESTS_SUPPORT_PNG_BUILDER_H_
#define LUMIGRAM_TESTS_SUPPORT_PNG_BUILDER_H_

#include "tests/support/bytes.h"

namespace lumigram::test {

// Computed bit by bit, independently of the product's table.
inline uint32_t Crc(const Bytes& bytes) {
  uint32_t crc = ~0u;
  for (uint8_t byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

inline Bytes PngChunkClaiming(uint32_t length, std::string_view type, const Bytes& data) {
  const Bytes covered = Text(type) + data;
  return Be32(length) + covered + Be32(Crc(covered));
}
inline Bytes PngChunk(std::string_view type, const Bytes& data) {
  return PngChunkClaiming(uint32_t(data.size()), type, data);
}

// Signature and header.
inline Bytes PngStart(uint32_t width = 32, uint32_t height = 16) {
  const Bytes fields = Be32(width) + Be32(height) + Bytes{8, 6, 0, 0, 0};
  return Text("\x89PNG\r\n\x1A\n") + PngChunk("IHDR", fields);
}
inline const Bytes kPngImage = PngChunk("IDAT", Text("pixels"));
inline const Bytes kPngEnd = PngChunk("IEND", {});
// Claims 2^32 - 4 bytes: in 32 bits, a skip over data and CRC would not move.
inline const Bytes kPngHuge = FirstOf(PngChunkClaiming(0u - 4, "abCd", {}), 8);

inline Bytes PngDocument(std::string_view text) {
  return PngChunk("tEXt", Text("Emoji") + Bytes{0} + Text(text));
}

inline Bytes PngBlob(std::string_view label, std::string_view name, const Bytes& data) {
  return PngChunk("emJe", Text(label) + Be32(uint32_t(name.size())) + Text(name) +
                              Be32(uint32_t(data.size())) + data);
}

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_PNG_BUILDER_H_
