// The CRC of PNG chunks: CRC-32 with the reflected polynomial EDB88320, all ones at the start, all
// bits inverted at the end.
#ifndef LUMIGRAM_CORE_PNG_CRC32_H_
#define LUMIGRAM_CORE_PNG_CRC32_H_

#include <stdint.h>

#include <array>
#include <span>

namespace lumigram {

// The effect of each byte value on the sum.
inline constexpr std::array<uint32_t, 256> kCrcTable = [] {
  std::array<uint32_t, 256> table{};
  for (uint32_t byte = 0; byte < 256; ++byte) {
    uint32_t sum = byte;
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xEDB88320 : 0);
    table[byte] = sum;
  }
  return table;
}();

inline uint32_t Crc32(std::span<const uint8_t> bytes) {
  uint32_t sum = 0xFFFFFFFF;
  for (uint8_t byte : bytes) sum = sum >> 8 ^ kCrcTable[(sum ^ byte) & 0xFF];
  return ~sum;
}

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_PNG_CRC32_H_
