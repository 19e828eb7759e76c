// The contents of a container besides the document that its reader delivers.
#ifndef LUMIGRAM_CORE_DOCUMENT_SURVEY_H_
#define LUMIGRAM_CORE_DOCUMENT_SURVEY_H_

#include <stdint.h>

#include <string_view>

namespace lumigram {

// A blob whose label begins "EMJ".
struct FoundBlob {
  std::string_view label;  // as stored, with its padding
  std::string_view name;   // its first 256 bytes: no entry's name is longer
  uint64_t position;       // of its data in the file, as the container stores them
  uint32_t size;           // of its data
};

struct Survey {
  uint32_t documents = 0;
  bool documentAfterImage = false;  // the first document follows the first image
  uint32_t brokenBlobs = 0;         // their lengths do not fit their chunk
  uint32_t foreignBlobs = 0;        // their label does not begin "EMJ": a rewrite drops them
  uint64_t end = 0;                 // of the picture: a rewrite drops the bytes after it

  void CountDocument(bool afterImage) {
    if (++documents == 1) documentAfterImage = afterImage;
  }
};

// Is called for each blob, in file order. The blob's texts are valid only during the call.
struct BlobVisitor {
  void (*visit)(void* context, const FoundBlob& blob);
  void* context;

  void operator()(const FoundBlob& blob) const { visit(context, blob); }
};

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_DOCUMENT_SURVEY_H_
