// Integers in the byte orders of the containers, and comparisons of bytes with text.
#ifndef LUMIGRAM_CORE_BASE_BYTES_H_
#define LUMIGRAM_CORE_BASE_BYTES_H_

#include <stdint.h>
#include <string.h>

#include <span>
#include <string_view>

namespace lumigram {

inline uint16_t LoadLe16(const uint8_t* p) { return static_cast<uint16_t>(p[0] | p[1] << 8); }

inline uint16_t LoadBe16(const uint8_t* p) { return static_cast<uint16_t>(p[0] << 8 | p[1]); }

inline uint32_t LoadBe32(const uint8_t* p) {
  return static_cast<uint32_t>(p[0]) << 24 | static_cast<uint32_t>(p[1]) << 16 |
         static_cast<uint32_t>(p[2]) << 8 | p[3];
}

inline void StoreBe16(uint16_t value, uint8_t* p) {
  p[0] = static_cast<uint8_t>(value >> 8);
  p[1] = static_cast<uint8_t>(value);
}

inline void StoreBe32(uint32_t value, uint8_t* p) {
  StoreBe16(static_cast<uint16_t>(value >> 16), p);
  StoreBe16(static_cast<uint16_t>(value), p + 2);
}

// Whether the bytes begin with the text. False when there are fewer bytes than the text has.
inline bool BeginsWith(std::span<const uint8_t> bytes, std::string_view text) {
  return bytes.size() >= text.size() && memcmp(bytes.data(), text.data(), text.size()) == 0;
}

inline bool BeginsWith(std::string_view whole, std::string_view text) {
  return whole.size() >= text.size() && memcmp(whole.data(), text.data(), text.size()) == 0;
}

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_BYTES_H_
