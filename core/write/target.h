// The file that a path leads to, opened so that it can be replaced.
#ifndef LUMIGRAM_CORE_WRITE_TARGET_H_
#define LUMIGRAM_CORE_WRITE_TARGET_H_

#include <limits.h>

#include "core/write/system_calls.h"

namespace lumigram {

struct Target {
  char path[PATH_MAX];    // without links in the last component
  const char* extension;  // of the temporary file
  Descriptor file;
};

// Opens the file at a path with these flags, and stores its path without links. False, with errno
// set, when it cannot be opened; a path that does not exist is stored, too.
bool OpenTarget(const char* path, int flags, Target* target);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_WRITE_TARGET_H_
