#include "cli/spelling.h"

#include <stdint.h>
#include <stdio.h>
#include <wchar.h>

#include "core/base/utf8.h"

namespace lumigram::cli {
namespace {

template <typename Function>
void ForEachCharacter(std::string_view text, Function function) {
  while (!text.empty()) {
    const Utf8Character character = FirstCharacter(text);
    function(character.code, text.substr(0, character.size));
    text.remove_prefix(character.size);
  }
}

void Append(uint32_t code, std::string* out) {
  char bytes[4];
  out->append(bytes, PutSequence(code, bytes));
}

// Whether the character, which is not in the first 32, controls a terminal, or has no width and
// changes the direction or the lines of the text around it.
bool IsUnseen(uint32_t code) {
  return (code >= 0x7F && code < 0xA0) || code == 0x061C || code == 0x200E || code == 0x200F ||
         (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

std::string Formatted(const char* format, uint32_t code) {
  char text[16];
  snprintf(text, sizeof text, format, static_cast<unsigned>(code));
  return text;
}

}  // namespace

std::string ToUtf8(std::string_view stored) {
  std::string text;
  ForEachCharacter(stored, [&](uint32_t code, std::string_view) {
    Append(code == kNoCharacter ? kReplacementCharacter : code, &text);
  });
  return text;
}

std::string JoinSurrogates(std::string_view stored) {
  std::string text;
  ForEachCharacter(stored, [&](uint32_t code, std::string_view bytes) {
    constexpr size_t kPairBytes = 6;
    bytes.size() == kPairBytes ? Append(code, &text) : void(text += bytes);
  });
  return text;
}

std::string ToJava(std::string_view text) {
  std::string stored;
  ForEachCharacter(text, [&](uint32_t code, std::string_view) {
    char bytes[6];
    code = code == kNoCharacter ? kReplacementCharacter : code;
    stored.append(bytes, PutJavaCharacter(code, bytes));
  });
  return stored;
}

bool IsJavaSpelling(std::string_view stored) { return ToJava(ToUtf8(stored)) == stored; }

std::string Printable(std::string_view text) {
  std::string printable;
  ForEachCharacter(text, [&](uint32_t code, std::string_view bytes) {
    if (code == '\n') return (void)(printable += "\\n");
    if (code == '\t') return (void)(printable += "\\t");
    if (code == kNoCharacter) {
      for (char c : bytes) printable += Formatted("\\x%02x", static_cast<uint8_t>(c));
    } else if (code < 0x20 || IsUnseen(code)) {
      printable += Formatted("\\u{%x}", code);
    } else {
      Append(code, &printable);
    }
  });
  return printable;
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (size_t at; (at = text.find('\\')) != std::string_view::npos; text.remove_prefix(at + 1)) {
    escaped += Printable(text.substr(0, at)) + "\\\\";
  }
  return escaped + Printable(text);
}

std::string FileName(std::string_view stored) {
  std::string name;
  ForEachCharacter(stored, [&](uint32_t code, std::string_view) {
    const bool isUnsafe = code == kNoCharacter || code < 0x20 || IsUnseen(code) || code == '/' ||
                          (code == '.' && name.empty());
    Append(isUnsafe ? '_' : code, &name);
  });
  return name.empty() ? "_" : name;
}

std::string PrintableJson(std::string_view json) {
  std::string printable;
  ForEachCharacter(json, [&](uint32_t code, std::string_view bytes) {
    IsUnseen(code) ? printable += Formatted("\\u%04x", code) : printable += bytes;
  });
  return printable;
}

std::string Shortened(std::string_view text, size_t limit) {
  std::string shown;
  while (!text.empty() && shown.size() < limit) {
    const size_t size = FirstCharacter(text).size;
    shown += Printable(text.substr(0, size));
    text.remove_prefix(size);
  }
  return text.empty() ? shown : shown + "...";
}

std::string Quoted(std::string_view text) { return '"' + Shortened(text) + '"'; }

size_t Columns(std::string_view printable) {
  size_t columns = 0;
  ForEachCharacter(printable, [&](uint32_t code, std::string_view) {
    const int width = wcwidth(static_cast<wchar_t>(code));
    columns += width < 0 ? 1 : static_cast<size_t>(width);
  });
  return columns;
}

}  // namespace lumigram::cli
