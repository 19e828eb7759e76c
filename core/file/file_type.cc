// Determines a picture's type from its name, and opens it.
#include <string.h>

#include <string_view>

#include "core/base/path.h"
#include "core/base/status.h"

namespace lumigram {
namespace {

struct Extension {
  std::string_view text;
  FileType type;
};

constexpr Extension kExtensions[] = {{".gif", kFileTypeGif},
                                     {".jpg", kFileTypeJpeg},
                                     {".jpeg", kFileTypeJpeg},
                                     {".png", kFileTypePng}};

// Ignores the case of ASCII letters only, whatever the locale.
bool EqualsFolded(const char* text, std::string_view lowerCase) {
  for (char want : lowerCase) {
    const char c = *text++;
    if ((c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c) != want) return false;
  }
  return *text == '\0';
}

FILE* OpenForWriting(const char* path) {
  ScopedBlock<char> storage;
  const char* spelling = PathForWriting(path, &storage);
  return spelling == nullptr ? nullptr : fopen(spelling, "wb");
}

}  // namespace
}  // namespace lumigram

using namespace lumigram;

int32_t GetFileType(const char* path, FileType* outType) {
  if (path == nullptr || outType == nullptr) return kFailed;
  const char* dot = strrchr(path, '.');
  if (dot == nullptr) return kFailed;
  for (const Extension& extension : kExtensions) {
    if (EqualsFolded(dot, extension.text)) {
      *outType = extension.type;
      return kOk;
    }
  }
  return kFailed;
}

int32_t OpenFile(const char* path, uint32_t modeIndex, FILE** outStream, FileType* outType) {
  if (path == nullptr || outType == nullptr || modeIndex > 1) return kBadArgument;
  if (GetFileType(path, outType) != kOk) return kUnsupported;
  *outStream = modeIndex == 0 ? OpenForReading(path) : OpenForWriting(path);
  return *outStream == nullptr ? kCannotOpen : kOk;
}
