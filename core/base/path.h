// Paths as Java delivers them. Java spells a character outside the basic plane (usually an emoji)
// as a surrogate pair of two three-byte sequences; file names have it as one four-byte sequence.
#ifndef LUMIGRAM_CORE_BASE_PATH_H_
#define LUMIGRAM_CORE_BASE_PATH_H_

#include <stdio.h>

#include "core/base/scoped.h"

namespace lumigram {

// Opens a file for reading ("rb"). If that fails and the path holds surrogate pairs, its UTF-8
// spelling is tried. Returns null or -1, with errno set, when neither can be opened. The caller
// closes the stream or the descriptor.
FILE* OpenForReading(const char* path);
int OpenDescriptorForReading(const char* path, int furtherFlags = 0);

// Returns the spelling to write to: the path if it names an existing file or holds no pairs, else
// its UTF-8 spelling, which *storage owns. Null when there is no memory for it.
const char* PathForWriting(const char* path, ScopedBlock<char>* storage);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_PATH_H_
