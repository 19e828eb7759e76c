#include "cli/base64.h"

#include <stdint.h>

#include <array>

namespace lumigram::cli {
namespace {

constexpr std::string_view kDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// The value of each character; -1 for one that is no digit.
constexpr auto kValues = [] {
  std::array<int8_t, 256> values = {};
  values.fill(-1);
  for (size_t i = 0; i < kDigits.size(); ++i) {
    values[static_cast<uint8_t>(kDigits[i])] = static_cast<int8_t>(i);
  }
  return values;
}();

}  // namespace

std::string ToBase64(std::string_view bytes) {
  std::string text;
  uint32_t bits = 0, count = 0;
  for (const char byte : bytes) {
    bits = bits << 8 | static_cast<uint8_t>(byte);
    for (count += 8; count >= 6; count -= 6) text += kDigits[bits >> (count - 6) & 63];
  }
  if (count > 0) text += kDigits[bits << (6 - count) & 63];
  while (text.size() % 4 != 0) text += '=';
  return text;
}

std::optional<std::string> FromBase64(std::string_view text) {
  std::string bytes;
  uint32_t bits = 0, count = 0;
  for (const char digit : text.substr(0, text.find('='))) {
    const int8_t value = kValues[static_cast<uint8_t>(digit)];
    if (value < 0) return std::nullopt;
    bits = bits << 6 | static_cast<uint32_t>(value);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count);
  }
  // Wrong padding, and bits that belong to no byte, would be encoded differently.
  if (ToBase64(bytes) != text) return std::nullopt;
  return bytes;
}

}  // namespace lumigram::cli
