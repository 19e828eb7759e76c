// Where a picture's metadata lie, as its writer will find them: what a reader of one document or
// one blob does not tell.
#ifndef LUMIGRAM_TOOLS_LAYOUT_H_
#define LUMIGRAM_TOOLS_LAYOUT_H_

#include <stdint.h>

#include <string>
#include <vector>

#include "core/base/scoped.h"
#include "lumigram.h"

namespace lumigram::tool {

struct Blob {
  std::string label, name, bytes;
  bool operator==(const Blob&) const = default;
};

struct Layout {
  std::vector<Blob> blobs;
  int brokenBlobs = 0;   // whose lengths do not fit
  int foreignBlobs = 0;  // not marked as ours: the writer drops them
  int documents = 0;
  bool behindImage = false;  // the first document stands behind the first image
  size_t end = 0;            // of the picture: the writer drops what follows

  void MeetDocument(bool imageMet) {
    if (++documents == 1) behindImage = imageMet;
  }
};

// Of a picture that its reader has accepted. Throws Failure.
Layout LayOut(FileType type, const std::vector<uint8_t>& bytes);

// The bytes as a stream, for the functions of the core. They must outlive it. Throws Failure.
ScopedFile OpenMemory(const std::vector<uint8_t>& bytes);

}  // namespace lumigram::tool

#endif  // LUMIGRAM_TOOLS_LAYOUT_H_
