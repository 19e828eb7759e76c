// The kind of a container. A switch over it has no default, so that both compilers name the places
// that a new kind needs. The code after such a switch handles values that are no kind.
#ifndef LUMIGRAM_CORE_BASE_KIND_H_
#define LUMIGRAM_CORE_BASE_KIND_H_

#include <stdint.h>

#include <optional>

#include "lumigram.h"

namespace lumigram {

enum class Kind : int32_t { kGif = kFileTypeGif, kJpeg = kFileTypeJpeg, kPng = kFileTypePng };

// No kind for kFileTypeUnknown, or for a value that is not in the enumeration.
inline std::optional<Kind> KindOf(FileType type) {
  switch (static_cast<Kind>(type)) {
    case Kind::kGif:
    case Kind::kJpeg:
    case Kind::kPng:
      return static_cast<Kind>(type);
  }
  return std::nullopt;
}

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_KIND_H_
