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

// A block of malloc(). `ScopedBlock<T> block(static_cast<T*>(malloc(sizeof(T))));` may be null: no
// memory.
template <typename T>
using ScopedBlock = std::unique_ptr<T, FreeDeleter>;

// A stream that is closed at the end of the scope; what fclose() says is of no interest for one
// that was only read.
using ScopedFile = std::unique_ptr<FILE, CloseDeleter>;

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_SCOPED_H_
