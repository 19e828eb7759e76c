#include "core/file/obstacle.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string_view>

#include "core/base/kind.h"
#include "core/base/path.h"
#include "core/base/scoped.h"
#include "core/base/text.h"
#include "core/base/utf8.h"
#include "core/file/signature.h"

namespace lumigram {
namespace {

// clang-tidy 14 does not see the use of literals.
using std::string_view_literals::operator""sv;  // NOLINT(misc-unused-using-decls)

// A format that is not one of ours: how its files start, and a mark at an offset.
struct Format {
  std::string_view start;
  size_t markAt;
  std::string_view mark;
  const char* words;
};

constexpr Format kFormats[] = {
    {"RIFF", 8, "WEBP", "holds a WebP picture, which is not supported"},
    {"BM", 6, "\0\0\0\0"sv, "holds a BMP picture, which is not supported"},
    {"II*\0"sv, 0, "", "holds a TIFF picture, which is not supported"},
    {"MM\0*"sv, 0, "", "holds a TIFF picture, which is not supported"},
    {"", 4, "ftypavi", "holds an AVIF picture, which is not supported"},
    {"", 4, "ftyphe", "holds an HEIC picture, which is not supported"},
    {"", 4, "ftypmif1", "holds an HEIF picture, which is not supported"},
    {"", 4, "ftyp", "holds a video or sound, not a picture"},
    {"\0\0\1\0"sv, 0, "", "holds an ICO picture, which is not supported"},
    {"\0\0\0\x0CJXL "sv, 0, "", "holds a JPEG XL picture, which is not supported"},
    {"\xFF\x0A", 0, "", "holds a JPEG XL picture, which is not supported"},
    {"\0\0\0\x0CjP  "sv, 0, "", "holds a JPEG 2000 picture, which is not supported"},
    {"8BPS", 0, "", "holds a PSD picture, which is not supported"},
    {"%PDF-", 0, "", "holds a PDF document, not a picture"},
    {"PK\3\4", 0, "", "holds a ZIP archive, not a picture"},
    {"\x1F\x8B", 0, "", "holds compressed data, not a picture"},
};

bool HasAt(std::string_view head, size_t at, std::string_view mark) {
  return head.size() >= at + mark.size() && memcmp(head.data() + at, mark.data(), mark.size()) == 0;
}

const Format* FindFormat(std::string_view head) {
  for (const Format& format : kFormats) {
    if (HasAt(head, 0, format.start) && HasAt(head, format.markAt, format.mark)) return &format;
  }
  return nullptr;
}

const char* WordsForKind(Kind kind) {
  switch (kind) {
    case Kind::kGif:
      return "holds a GIF picture; rename it to .gif";
    case Kind::kJpeg:
      return "holds a JPEG picture; rename it to .jpg";
    case Kind::kPng:
      return "holds a PNG picture; rename it to .png";
  }
  return "";
}

// The last character of the head may be cut.
bool IsText(std::string_view head) {
  while (!head.empty()) {
    const Utf8Character character = FirstCharacter(head);
    if (character.code == kNoCharacter) return head.size() < 4 && (head.front() & 0xC0) == 0xC0;
    const bool isBlank = character.code == '\t' || character.code == '\n' || character.code == '\r';
    if ((character.code < 0x20 || character.code == 0x7F) && !isBlank) return false;
    head.remove_prefix(character.size);
  }
  return true;
}

class Search {
 public:
  Search(const char* path, char (&words)[kObstacleWords]) : words_(words) {
    const char* const spelling = PathForWriting(path, &storage_);
    path_ = spelling == nullptr ? path : spelling;
    words_[0] = '\0';
  }

  Obstacle Run(Access access) {
    Obstacle obstacle = OfStatus();
    if (obstacle == Obstacle::kNone) obstacle = OfContent();
    if (obstacle == Obstacle::kNone && access == Access::kWrite) obstacle = OfWriting();
    return obstacle;
  }

 private:
  Obstacle Found(Obstacle obstacle, std::string_view found) {
    CopyText(words_, found);
    return obstacle;
  }

  Obstacle OfError() {
    if (errno == ENOENT || errno == ENOTDIR) return Found(Obstacle::kMissing, "no such file");
    if (errno == EACCES) return Found(Obstacle::kForbidden, "permission denied");
    return Obstacle::kNone;
  }

  Obstacle OfStatus() {
    struct stat status;
    if (stat(path_, &status) != 0) return OfError();
    if (S_ISDIR(status.st_mode)) return Found(Obstacle::kFolder, "a folder");
    if (!S_ISREG(status.st_mode)) return Found(Obstacle::kNotRegular, "not a regular file");
    if (status.st_size == 0) return Found(Obstacle::kEmpty, "empty file");
    if (status.st_size > kLumigramMaxPictureBytes) return Found(Obstacle::kTooLarge, "over 2 MiB");
    return Obstacle::kNone;
  }

  // The path may lead to a FIFO by now, for which O_NONBLOCK does not wait.
  Obstacle OfContent() {
    const int descriptor = open(path_, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return OfError();
    char bytes[kObstacleHead];
    const ssize_t size = pread(descriptor, bytes, kObstacleHead, 0);
    (void)close(descriptor);
    FileType named = kFileTypeUnknown;
    (void)GetFileType(path_, &named);
    const std::string_view head(bytes, size <= 0 ? 0 : static_cast<size_t>(size));
    return FindObstacleInBytes(head, named, words_);
  }

  Obstacle OfWriting() {
    const int descriptor = open(path_, O_WRONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor >= 0) (void)close(descriptor);
    const bool refused = descriptor < 0 && (errno == EACCES || errno == EPERM || errno == EROFS);
    return refused ? Found(Obstacle::kReadOnly, "read-only file") : Obstacle::kNone;
  }

  char (&words_)[kObstacleWords];
  ScopedBlock<char> storage_;
  const char* path_;
};

}  // namespace

Obstacle FindObstacleInBytes(std::string_view head, FileType named, char (&words)[kObstacleWords]) {
  const auto found = [&words](Obstacle obstacle, std::string_view text) {
    CopyText(words, text);
    return obstacle;
  };
  words[0] = '\0';
  if (head.empty()) return Obstacle::kNone;
  if (const auto kind =
          KindFromSignature({reinterpret_cast<const uint8_t*>(head.data()), head.size()})) {
    const bool isNamed = kind == KindOf(named);
    return isNamed ? Obstacle::kNone : found(Obstacle::kOtherKind, WordsForKind(*kind));
  }
  if (const Format* const format = FindFormat(head))
    return found(Obstacle::kForeign, format->words);
  return IsText(head) ? found(Obstacle::kText, "holds text, not a picture") : Obstacle::kNone;
}

Obstacle FindObstacle(const char* path, Access access, char (&words)[kObstacleWords]) {
  const int error = errno;
  const Obstacle obstacle = Search(path, words).Run(access);
  errno = error;
  return obstacle;
}

}  // namespace lumigram
