#include "core/base/utf8.h"

namespace lumigram {
namespace {

constexpr uint32_t kFirstHighSurrogate = 0xD800;
constexpr uint32_t kFirstLowSurrogate = 0xDC00;
constexpr uint32_t kEndOfSurrogates = 0xE000;
constexpr uint32_t kLastCharacter = 0x10FFFF;
constexpr int kSurrogateBits = 10;

bool IsHighSurrogate(uint32_t code) {
  return code >= kFirstHighSurrogate && code < kFirstLowSurrogate;
}
bool IsLowSurrogate(uint32_t code) { return code >= kFirstLowSurrogate && code < kEndOfSurrogates; }

uint8_t ByteAt(std::string_view text, size_t i) { return static_cast<uint8_t>(text[i]); }

char* PutTail(uint32_t code, int shift, char* out) {
  *out = static_cast<char>(0x80 | (code >> shift & 0x3F));
  return out + 1;
}

}  // namespace

Utf8Character FirstSequence(std::string_view text) {
  constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, kFirstSupplementary};
  constexpr Utf8Character kNone = {kNoCharacter, 1};
  const uint8_t lead = ByteAt(text, 0);
  if (lead < 0x80) return {lead, 1};
  const size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC0 || lead > 0xF7 || text.size() < size) return kNone;
  uint32_t code = lead & 0xFFu >> (size + 1);
  for (size_t i = 1; i < size; ++i) {
    if ((ByteAt(text, i) & 0xC0) != 0x80) return kNone;
    code = code << 6 | (ByteAt(text, i) & 0x3Fu);
  }
  const bool isJavaNul = size == 2 && code == 0;
  if ((code < kSmallest[size] && !isJavaNul) || code > kLastCharacter) return kNone;
  return {code, size};
}

Utf8Character FirstCharacter(std::string_view text) {
  const Utf8Character first = FirstSequence(text);
  if (IsLowSurrogate(first.code)) return {kNoCharacter, first.size};
  if (!IsHighSurrogate(first.code)) return first;
  text.remove_prefix(first.size);
  const Utf8Character second = text.empty() ? first : FirstSequence(text);
  if (!IsLowSurrogate(second.code)) return {kNoCharacter, first.size};
  const uint32_t high = first.code - kFirstHighSurrogate;
  const uint32_t low = second.code - kFirstLowSurrogate;
  return {kFirstSupplementary + (high << kSurrogateBits | low), first.size + second.size};
}

bool IsValidText(std::string_view text) {
  while (!text.empty()) {
    const Utf8Character character = FirstCharacter(text);
    if (character.code == kNoCharacter) return false;
    text.remove_prefix(character.size);
  }
  return true;
}

char* PutSequence(uint32_t code, char* out) {
  if (code < 0x80) {
    *out = static_cast<char>(code);
    return out + 1;
  }
  if (code < 0x800) {
    *out = static_cast<char>(0xC0 | code >> 6);
    return PutTail(code, 0, out + 1);
  }
  if (code < kFirstSupplementary) {
    *out = static_cast<char>(0xE0 | code >> 12);
    return PutTail(code, 0, PutTail(code, 6, out + 1));
  }
  *out = static_cast<char>(0xF0 | code >> 18);
  return PutTail(code, 0, PutTail(code, 6, PutTail(code, 12, out + 1)));
}

char* PutJavaCharacter(uint32_t code, char* out) {
  if (code == 0) {
    *out = static_cast<char>(0xC0);
    return PutTail(0, 0, out + 1);
  }
  if (code < kFirstSupplementary) return PutSequence(code, out);
  const uint32_t offset = code - kFirstSupplementary;
  out = PutSequence(kFirstHighSurrogate + (offset >> kSurrogateBits), out);
  return PutSequence(kFirstLowSurrogate + (offset & 0x3FF), out);
}

}  // namespace lumigram
