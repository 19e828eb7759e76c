// A picture as the tool sees it: its bytes, its document, its blobs, and what to know about them.
#ifndef LUMIGRAM_TOOLS_PICTURE_MODEL_H_
#define LUMIGRAM_TOOLS_PICTURE_MODEL_H_

#include <stdint.h>

#include <string>
#include <vector>

#include "lumigram.h"
#include "tools/document_model.h"
#include "tools/layout.h"

namespace lumigram::tool {

struct Picture {
  FileType type = kFileTypeUnknown;
  std::vector<uint8_t> bytes;
  int32_t width = 0, height = 0, pop = 0;
  bool hasDocument = false;
  Reading reading;  // the findings of the picture as well as those of its document
  std::vector<Blob> blobs;

  const Document& document() const { return reading.whole; }
  const char* TypeName() const;
  // The first finding of that kind; null when there is none.
  const Finding* First(Finding::Kind kind) const;
};

// Reads the picture at a path, which must name a regular file. Throws Failure.
Picture ReadPicture(const std::string& path);

// Takes a complete picture apart. Throws Failure when the library does not read it.
Picture InspectPicture(FileType type, std::vector<uint8_t> bytes);

// Whether a tag of the document keeps the blob in the picture when it is rewritten.
bool IsNamed(const Blob& blob, const Document& document);

}  // namespace lumigram::tool

#endif  // LUMIGRAM_TOOLS_PICTURE_MODEL_H_
