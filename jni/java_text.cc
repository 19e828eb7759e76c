#include "jni/java_text.h"

#include <stdint.h>

namespace lumigram {
namespace {

constexpr uint32_t kReplacement = 0xFFFD;
constexpr uint32_t kFirstSupplementary = 0x10000;
constexpr uint32_t kLastCharacter = 0x10FFFF;

using Byte = unsigned char;

// The terminator continues nothing, so that no test below looks behind it.
bool Continues(Byte b) { return (b & 0xC0) == 0x80; }

// The size of the sequence at p when Java takes it as it is, else 0. The terminator is taken, too.
size_t PlainSize(const Byte* p) {
  if (p[0] < 0x80) return 1;
  if (p[0] == 0xC0) return p[1] == 0x80 ? 2 : 0;  // how Java spells U+0000
  if (p[0] < 0xC2 || !Continues(p[1])) return 0;
  if (p[0] < 0xE0) return 2;
  if (p[0] > 0xEF || (p[0] == 0xE0 && p[1] < 0xA0)) return 0;
  return Continues(p[2]) ? 3 : 0;
}

// The character of a four-byte sequence at p; 0 when there is none.
uint32_t SupplementaryAt(const Byte* p) {
  if (p[0] < 0xF0 || p[0] > 0xF4) return 0;
  if (!Continues(p[1]) || !Continues(p[2]) || !Continues(p[3])) return 0;
  const uint32_t code =
      (p[0] & 7u) << 18 | (p[1] & 0x3Fu) << 12 | (p[2] & 0x3Fu) << 6 | (p[3] & 0x3Fu);
  return code >= kFirstSupplementary && code <= kLastCharacter ? code : 0;
}

Byte* PutThreeBytes(uint32_t unit, Byte* out) {
  *out++ = static_cast<Byte>(0xE0 | unit >> 12);
  *out++ = static_cast<Byte>(0x80 | (unit >> 6 & 0x3F));
  *out++ = static_cast<Byte>(0x80 | (unit & 0x3F));
  return out;
}

Byte* PutPair(uint32_t code, Byte* out) {
  code -= kFirstSupplementary;
  return PutThreeBytes(0xDC00 | (code & 0x3FF), PutThreeBytes(0xD800 | code >> 10, out));
}

bool IsPlain(const Byte* p) {
  while (*p != '\0') {
    const size_t size = PlainSize(p);
    if (size == 0) return false;
    p += size;
  }
  return true;
}

// Writes at most three bytes for every byte of the text, and the terminator.
void Convert(const Byte* p, Byte* out) {
  while (*p != '\0') {
    if (size_t size = PlainSize(p); size != 0) {
      for (; size > 0; --size) *out++ = *p++;
    } else if (const uint32_t code = SupplementaryAt(p); code != 0) {
      out = PutPair(code, out);
      p += 4;
    } else {
      out = PutThreeBytes(kReplacement, out);
      ++p;
    }
  }
  *out = '\0';
}

}  // namespace

jstring NewStringOfBoundedText(JNIEnv* env, const char* text) {
  const Byte* bytes = reinterpret_cast<const Byte*>(text);
  if (IsPlain(bytes)) return env->NewStringUTF(text);
  Byte converted[3 * (kMaxJavaTextField - 1) + 1];
  Convert(bytes, converted);
  return env->NewStringUTF(reinterpret_cast<const char*>(converted));
}

}  // namespace lumigram
