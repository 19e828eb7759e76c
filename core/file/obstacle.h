// Why a picture cannot be read or written. To be called after a failure only: the statuses of the
// readers and writers do not say what a path really leads to.
#ifndef LUMIGRAM_CORE_FILE_OBSTACLE_H_
#define LUMIGRAM_CORE_FILE_OBSTACLE_H_

#include <stddef.h>

#include <string_view>

#include "lumigram.h"

namespace lumigram {

enum class Obstacle {
  kNone,        // nothing was found; the words are empty
  kMissing,     // no such file
  kForbidden,   // no permission to read it, or to search its folder
  kFolder,      // a folder
  kNotRegular,  // a device, a FIFO or a socket, which is not opened
  kEmpty,       // a file without a byte
  kTooLarge,    // over 2 MiB
  kOtherKind,   // a picture of another kind than its name says
  kForeign,     // a known format that is not one of ours
  kText,        // plain text
  kReadOnly,    // may be read and not written
};

enum class Access { kRead, kWrite };

// The longest words, with their terminator.
inline constexpr int kObstacleWords = 64;

// Finds the first obstacle to reading the picture at a path, and then, for kWrite, to writing it.
// Looks at the file's status and at its first twelve bytes. Stores words for the obstacle, such as
// "holds a PNG picture; rename it to .png". The path has either spelling. errno stays the same.
Obstacle FindObstacle(const char* path, Access access, char (&words)[kObstacleWords]);

// The same for the first bytes of a picture of a known name or kind. Finds kOtherKind, kForeign,
// kText or kNone.
Obstacle FindObstacleInBytes(std::string_view head, FileType named, char (&words)[kObstacleWords]);

// As many bytes as FindObstacleInBytes() looks at.
inline constexpr size_t kObstacleHead = 12;

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_FILE_OBSTACLE_H_
