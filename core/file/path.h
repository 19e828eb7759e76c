// Paths as Java delivers them. A character outside the basic plane (an emoji, most of the time)
// arrives as a surrogate pair of two three-byte sequences, while the file system has it as one
// four-byte sequence.
#ifndef LUMIGRAM_CORE_FILE_PATH_H_
#define LUMIGRAM_CORE_FILE_PATH_H_

#include <stdio.h>

#include "core/base/scoped.h"

namespace lumigram {

// Opens for reading ("rb"), first by the path as it is, then, when that fails and it holds pairs,
// by its UTF-8 spelling. Null, with errno set, when neither can be opened. The caller closes the
// stream,
// or the descriptor; -1 stands for null there.
FILE* OpenForReading(const char* path);
int OpenDescriptorForReading(const char* path);

// The spelling to write to: the path when it names an existing file or holds no pairs, else its
// UTF-8 spelling, which *storage then owns. Null when there is no memory for it.
const char* PathForWriting(const char* path, ScopedBlock<char>* storage);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_FILE_PATH_H_
