// The outputs of a container's reader.
#ifndef LUMIGRAM_CORE_DOCUMENT_READER_OUTPUTS_H_
#define LUMIGRAM_CORE_DOCUMENT_READER_OUTPUTS_H_

#include <stdint.h>

#include "core/base/fingerprint.h"
#include "lumigram.h"

namespace lumigram {

// Dimensions are at most 960. Exception: a reader may store dimensions before it refuses them;
// these can have any 32-bit value.
struct ReaderOutputs {
  char* document;  // kLumigramDocumentBufferBytes, all zero
  int32_t* height;
  int32_t* width;
  int32_t* pop;  // only GIF pictures have one; null for the others
  // Takes the blobs while the reader passes them. Null: nobody wants it.
  Fingerprint* fingerprint = nullptr;
};

// Whether width and height are within the limit for reading.
template <typename Sized>
bool IsEmojiSized(const Sized& sized) {
  return sized.Width() <= kLumigramMaxPixels && sized.Height() <= kLumigramMaxPixels;
}

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_DOCUMENT_READER_OUTPUTS_H_
