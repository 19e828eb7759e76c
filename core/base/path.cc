#include "core/base/path.h"

#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>

#include <string_view>

#include "core/base/utf8.h"

namespace lumigram {
namespace {

// Whether it is a character outside the basic plane, in Java's spelling.
bool IsPair(const Utf8Character& character) {
  return character.code != kNoCharacter && character.code >= kFirstSupplementary &&
         character.size > 4;
}

bool HoldsPair(std::string_view path) {
  while (!path.empty()) {
    const Utf8Character character = FirstCharacter(path);
    if (IsPair(character)) return true;
    path.remove_prefix(character.size);
  }
  return false;
}

// Returns the path with every pair replaced by one four-byte sequence; null without memory.
ScopedBlock<char> Utf8Spelling(std::string_view path) {
  ScopedBlock<char> spelling(static_cast<char*>(malloc(path.size() + 1)));
  if (spelling == nullptr) return spelling;
  char* out = spelling.get();
  while (!path.empty()) {
    const Utf8Character character = FirstCharacter(path);
    if (IsPair(character)) {
      out = PutSequence(character.code, out);
    } else {
      memcpy(out, path.data(), character.size);
      out += character.size;
    }
    path.remove_prefix(character.size);
  }
  *out = '\0';
  return spelling;
}

bool IsOpen(FILE* stream) { return stream != nullptr; }
bool IsOpen(int descriptor) { return descriptor >= 0; }

template <typename Call>
auto TrySpellings(const char* path, Call call) {
  const auto opened = call(path);
  if (IsOpen(opened) || !HoldsPair(path)) return opened;
  const ScopedBlock<char> spelling = Utf8Spelling(path);
  return spelling == nullptr ? opened : call(spelling.get());
}

}  // namespace

int OpenDescriptorForReading(const char* path, int furtherFlags) {
  return TrySpellings(path, [furtherFlags](const char* spelling) {
    return open(spelling, O_RDONLY | O_CLOEXEC | furtherFlags);
  });
}

FILE* OpenForReading(const char* path) {
  FILE* const stream =
      TrySpellings(path, [](const char* spelling) { return fopen(spelling, "rb"); });
  // ByteSource reads regular files into its own block: a second buffer would be of no use.
  if (stream != nullptr) (void)setvbuf(stream, nullptr, _IONBF, 0);
  return stream;
}

const char* PathForWriting(const char* path, ScopedBlock<char>* storage) {
  struct stat status;
  if (!HoldsPair(path) || stat(path, &status) == 0) return path;
  *storage = Utf8Spelling(path);
  return storage->get();
}

}  // namespace lumigram
