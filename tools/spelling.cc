#include "tools/spelling.h"

#include <stdint.h>
#include <stdio.h>
#include <wchar.h>

namespace lumigram::tool {
namespace {

constexpr char32_t kNone = 0xFFFFFFFF;
constexpr char32_t kReplacement = 0xFFFD;

struct Character {
  char32_t code;  // kNone: bytes that are no character
  size_t size;
};

bool IsHighSurrogate(char32_t code) { return code >= 0xD800 && code <= 0xDBFF; }
bool IsLowSurrogate(char32_t code) { return code >= 0xDC00 && code <= 0xDFFF; }

// One sequence of one to four bytes, surrogates included, without looking at what follows it.
Character FirstSequence(std::string_view text) {
  const auto byte = [text](size_t i) { return static_cast<uint8_t>(text[i]); };
  const uint8_t lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  const size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC0 || lead > 0xF7 || text.size() < size) return {kNone, 1};
  char32_t code = lead & (0xFF >> (size + 1));
  for (size_t i = 1; i < size; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return {kNone, 1};
    code = code << 6 | (byte(i) & 0x3F);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool isJavaNul = size == 2 && code == 0;  // C0 80
  if ((code < kSmallest[size] && !isJavaNul) || code > 0x10FFFF) return {kNone, 1};
  return {code, size};
}

Character FirstCharacter(std::string_view text) {
  const Character first = FirstSequence(text);
  if (IsLowSurrogate(first.code)) return {kNone, first.size};
  if (!IsHighSurrogate(first.code)) return first;
  const std::string_view rest = text.substr(first.size);
  const Character second = rest.empty() ? Character{kNone, 0} : FirstSequence(rest);
  if (!IsLowSurrogate(second.code)) return {kNone, first.size};
  return {0x10000 + ((first.code - 0xD800) << 10) + (second.code - 0xDC00), 6};
}

template <typename Function>
void ForEachCharacter(std::string_view text, Function function) {
  while (!text.empty()) {
    const Character character = FirstCharacter(text);
    function(character.code, text.substr(0, character.size));
    text.remove_prefix(character.size);
  }
}

void Append(char32_t code, std::string* out) {
  const auto put = [out](char32_t byte) { out->push_back(static_cast<char>(byte)); };
  const auto putTail = [&](int shift) { put(0x80 | (code >> shift & 0x3F)); };
  if (code < 0x80) return put(code);
  if (code < 0x800) {
    put(0xC0 | code >> 6);
  } else if (code < 0x10000) {
    put(0xE0 | code >> 12);
    putTail(6);
  } else {
    put(0xF0 | code >> 18);
    putTail(12);
    putTail(6);
  }
  putTail(0);
}

// Characters without a width of their own that change how the text around them is shown.
bool TurnsDirection(char32_t code) {
  return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069);
}

}  // namespace

std::string ToUtf8(std::string_view stored) {
  std::string text;
  ForEachCharacter(stored, [&](char32_t code, std::string_view) {
    Append(code == kNone ? kReplacement : code, &text);
  });
  return text;
}

std::string ToJava(std::string_view text) {
  std::string stored;
  ForEachCharacter(text, [&](char32_t code, std::string_view) {
    if (code == kNone) return Append(kReplacement, &stored);
    if (code == 0) {
      stored += "\xC0\x80";
    } else if (code < 0x10000) {
      Append(code, &stored);
    } else {
      Append(0xD800 + ((code - 0x10000) >> 10), &stored);
      Append(0xDC00 + ((code - 0x10000) & 0x3FF), &stored);
    }
  });
  return stored;
}

bool IsValid(std::string_view text) {
  bool valid = true;
  ForEachCharacter(text, [&](char32_t code, std::string_view) { valid = valid && code != kNone; });
  return valid;
}

std::string Printable(std::string_view text) {
  std::string printable;
  ForEachCharacter(text, [&](char32_t code, std::string_view bytes) {
    char escape[16] = "";
    if (code == '\n') return (void)(printable += "\\n");
    if (code == '\t') return (void)(printable += "\\t");
    if (code == kNone) {
      for (char c : bytes) {
        snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned>(static_cast<uint8_t>(c)));
        printable += escape;
      }
    } else if (code < 0x20 || (code >= 0x7F && code < 0xA0) || TurnsDirection(code)) {
      snprintf(escape, sizeof escape, "\\u{%x}", static_cast<unsigned>(code));
      printable += escape;
    } else {
      Append(code, &printable);
    }
  });
  return printable;
}

std::string Quoted(std::string_view text) {
  constexpr size_t kShown = 40;
  std::string quoted = "\"";
  ForEachCharacter(text, [&](char32_t, std::string_view bytes) {
    if (quoted.size() <= kShown)
      quoted += Printable(bytes);
    else if (!quoted.ends_with("..."))
      quoted += "...";
  });
  return quoted + "\"";
}

size_t Columns(std::string_view printable) {
  size_t columns = 0;
  ForEachCharacter(printable, [&](char32_t code, std::string_view) {
    const int width = wcwidth(static_cast<wchar_t>(code));
    columns += width < 0 ? 1 : static_cast<size_t>(width);
  });
  return columns;
}

}  // namespace lumigram::tool
