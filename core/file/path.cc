#include "core/file/path.h"

#include <fcntl.h>
#include <stdint.h>
#include <string.h>
#include <sys/stat.h>

namespace lumigram {
namespace {

constexpr size_t kPairSize = 6;

// ED A0..AF xx ED B0..BF xx. Stops at the terminator, which none of the comparisons accepts.
bool IsPair(const unsigned char* p) {
  return p[0] == 0xED && p[1] >= 0xA0 && p[1] <= 0xAF && (p[2] & 0xC0) == 0x80 && p[3] == 0xED &&
         p[4] >= 0xB0 && p[4] <= 0xBF && (p[5] & 0xC0) == 0x80;
}

const char* FindPair(const char* text) {
  for (; *text != '\0'; ++text) {
    if (IsPair(reinterpret_cast<const unsigned char*>(text))) return text;
  }
  return nullptr;
}

void StorePair(const unsigned char* p, char* out) {
  const uint32_t high = (p[1] & 0x0Fu) << 6 | (p[2] & 0x3Fu);
  const uint32_t low = (p[4] & 0x0Fu) << 6 | (p[5] & 0x3Fu);
  const uint32_t code = 0x10000 + (high << 10 | low);
  out[0] = static_cast<char>(0xF0 | code >> 18);
  out[1] = static_cast<char>(0x80 | (code >> 12 & 0x3F));
  out[2] = static_cast<char>(0x80 | (code >> 6 & 0x3F));
  out[3] = static_cast<char>(0x80 | (code & 0x3F));
}

// The path with every pair as one four-byte sequence; null when there is no memory.
ScopedBlock<char> Utf8Spelling(const char* path) {
  ScopedBlock<char> spelling(static_cast<char*>(malloc(strlen(path) + 1)));
  if (spelling == nullptr) return spelling;
  char* out = spelling.get();
  while (*path != '\0') {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(path);
    if (IsPair(p)) {
      StorePair(p, out);
      out += 4;
      path += kPairSize;
    } else {
      *out++ = *path++;
    }
  }
  *out = '\0';
  return spelling;
}

bool IsOpen(FILE* stream) { return stream != nullptr; }
bool IsOpen(int descriptor) { return descriptor >= 0; }

template <typename Call>
auto TrySpellings(const char* path, Call call) {
  const auto opened = call(path);
  if (IsOpen(opened) || FindPair(path) == nullptr) return opened;
  const ScopedBlock<char> spelling = Utf8Spelling(path);
  return spelling == nullptr ? opened : call(spelling.get());
}

}  // namespace

int OpenDescriptorForReading(const char* path) {
  return TrySpellings(path,
                      [](const char* spelling) { return open(spelling, O_RDONLY | O_CLOEXEC); });
}

FILE* OpenForReading(const char* path) {
  FILE* const stream =
      TrySpellings(path, [](const char* spelling) { return fopen(spelling, "rb"); });
  // Sources read regular files in blocks of their own: a second buffer would only be filled and
  // thrown away.
  if (stream != nullptr) (void)setvbuf(stream, nullptr, _IONBF, 0);
  return stream;
}

const char* PathForWriting(const char* path, ScopedBlock<char>* storage) {
  struct stat status;
  if (FindPair(path) == nullptr || stat(path, &status) == 0) return path;
  *storage = Utf8Spelling(path);
  return storage->get();
}

}  // namespace lumigram
