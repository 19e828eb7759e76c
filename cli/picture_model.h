// A picture: its bytes, its document, its blobs, and the findings about them.
#ifndef LUMIGRAM_CLI_PICTURE_MODEL_H_
#define LUMIGRAM_CLI_PICTURE_MODEL_H_

#include <stdint.h>

#include <string>
#include <vector>

#include "cli/document_model.h"
#include "cli/layout.h"
#include "core/base/kind.h"
#include "core/file/obstacle.h"

namespace lumigram::cli {

struct Picture {
  Kind kind = Kind::kGif;
  std::vector<uint8_t> bytes;
  int32_t width = 0, height = 0, pop = 0;
  bool hasDocument = false;
  std::string document;  // as stored, without NULs at its end
  Reading reading;       // the findings of the picture as well as those of its document
  std::vector<Blob> blobs;
  Survey survey;

  const Document& GetDocument() const { return reading.whole; }
  const char* KindName() const;
  // The first finding of that kind; null when there is none.
  const Finding* First(Finding::Severity severity) const;
};

// Returns the failure with the reason that a look at the file gives, if there is one.
Failure Explained(const std::string& path, const Failure& failure, Access access = Access::kRead);

// Stands for standard input where it is the only path.
inline constexpr char kStandardInput[] = "-";

// Reads the picture at a path, which must name a regular file, or of standard input. The second form
// leaves the file open, and is not for standard input. Throw Failure.
Picture ReadPicture(const std::string& path);
Picture ReadPicture(const std::string& path, OpenedPicture::Purpose purpose, OpenedPicture* file);

// Takes a complete picture apart. Throws Failure when the library cannot read it.
Picture InspectPicture(Kind kind, std::vector<uint8_t> bytes);

// Whether a tag of the document keeps the blob in the picture when it is rewritten.
bool IsReferredTo(const Blob& blob, const Document& document);

// Whether the tag refers to a blob that is not among these.
bool IsWithoutBlob(const Tag& tag, const std::vector<Blob>& blobs);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_PICTURE_MODEL_H_
