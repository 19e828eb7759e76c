// Bytes of pictures and texts of documents, built in code, and streams over them.
#ifndef LUMIGRAM_TESTS_SUPPORT_BYTES_H_
#define LUMIGRAM_TESTS_SUPPORT_BYTES_H_

#include <stdint.h>

#include <string>
#include <string_view>
#include <vector>

#include "core/base/scoped.h"

namespace lumigram::test {

using Bytes = std::vector<uint8_t>;

inline Bytes Text(std::string_view text) { return Bytes(text.begin(), text.end()); }
inline Bytes Le16(uint32_t v) { return {uint8_t(v), uint8_t(v >> 8)}; }
inline Bytes Be16(uint32_t v) { return {uint8_t(v >> 8), uint8_t(v)}; }
inline Bytes Be32(uint32_t v) {
  return {uint8_t(v >> 24), uint8_t(v >> 16), uint8_t(v >> 8), uint8_t(v)};
}

inline Bytes operator+(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}
inline Bytes& operator+=(Bytes& a, const Bytes& b) { return a = std::move(a) + b; }

// The bytes with those at `at` replaced by `with`.
inline Bytes Patched(Bytes bytes, size_t at, const Bytes& with) {
  std::copy(with.begin(), with.end(), bytes.begin() + static_cast<ptrdiff_t>(at));
  return bytes;
}
inline Bytes FirstOf(const Bytes& bytes, size_t n) {
  return Bytes(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(n));
}

// The modes of a stream over bytes in memory. Both must give the same results.
enum class Opened {
  kForReading,  // as OpenFile() opens it: a regular file, which is read in blocks
  kForUpdate,   // it is read through stdio
};
inline constexpr Opened kBothWays[] = {Opened::kForReading, Opened::kForUpdate};

// A stream over a copy of the bytes, at their start.
ScopedFile Stream(const Bytes& bytes, Opened opened = Opened::kForReading);

// A new temporary folder, removed with its contents at the end of the scope.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::string Path(std::string_view name) const { return path_ + "/" + std::string(name); }
  // Writes a file and returns its path.
  std::string Write(std::string_view name, const Bytes& bytes) const;

 private:
  std::string path_;
};

Bytes ReadWhole(const std::string& path);

// Documents and their elements, valid or not. Document() returns one of the given size; the default
// is the shortest one that all containers accept.
inline std::string Document(size_t size = 8) { return "<emoji>" + std::string(size - 7, '.'); }

inline std::string Tag(const std::string& name, const std::string& content) {
  return "<tags name=\"" + name + "\">" + content + "</tags>";
}
inline std::string Label(const std::string& name, const std::string& more = "") {
  return "<label><name>" + name + "</name>" + more + "</label>";
}
inline std::string Repeat(const std::string& text, size_t n) {
  std::string all;
  while (n-- > 0) all += text;
  return all;
}

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_BYTES_H_
