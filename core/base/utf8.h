// Characters in UTF-8 and in Java's modified UTF-8. The two differ in U+0000, which Java spells
// C0 80, and in characters outside the basic plane (usually emoji): UTF-8 has one four-byte
// sequence, Java a surrogate pair of two three-byte sequences.
#ifndef LUMIGRAM_CORE_BASE_UTF8_H_
#define LUMIGRAM_CORE_BASE_UTF8_H_

#include <stddef.h>
#include <stdint.h>

#include <string_view>

namespace lumigram {

inline constexpr uint32_t kNoCharacter = 0xFFFFFFFF;
inline constexpr uint32_t kReplacementCharacter = 0xFFFD;
inline constexpr uint32_t kFirstSupplementary = 0x10000;

struct Utf8Character {
  uint32_t code;  // kNoCharacter: bytes that are no character
  size_t size;    // in bytes, at least 1
};

// Decodes the first sequence of a text that is not empty. A sequence has one to four bytes and is
// the shortest for its code; C0 80 is the exception. A surrogate is a valid sequence. A byte that
// begins no sequence gives kNoCharacter and size 1.
Utf8Character FirstSequence(std::string_view text);

// Decodes the first character of a text that is not empty, in either spelling. A surrogate pair is
// one character of 6 bytes; a lone surrogate gives kNoCharacter and size 3.
Utf8Character FirstCharacter(std::string_view text);

// Whether every byte of the text belongs to a character.
bool IsValidText(std::string_view text);

// Writes the UTF-8 sequence of a code, 1 to 4 bytes. Returns the position after it.
char* PutSequence(uint32_t code, char* out);

// Writes a code in Java's spelling, 1 to 6 bytes. Returns the position after it.
char* PutJavaCharacter(uint32_t code, char* out);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_UTF8_H_
