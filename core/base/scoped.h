// One owner for each thing that must be given back.
#ifndef LUMIGRAM_CORE_BASE_SCOPED_H_
#define LUMIGRAM_CORE_BASE_SCOPED_H_

#include <stdio.h>
#include <stdlib.h>

#include <memory>

namespace lumigram {

struct FreeDeleter {
  void operator()(void* block) const { free(block); }
};

struct CloseDeleter {
  void operator()(FILE* stream) const { fclose(stream); }
};

// Owns a block of malloc(); null when there was no memory.
template <typename T>
using ScopedBlock = std::unique_ptr<T, FreeDeleter>;

// Owns a stream that is only read, so that the result of fclose() does not matter.
using ScopedFile = std::unique_ptr<FILE, CloseDeleter>;

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_SCOPED_H_
