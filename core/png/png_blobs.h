// The copying of one blob of a PNG picture, into a buffer of known size.
#ifndef LUMIGRAM_CORE_PNG_PNG_BLOBS_H_
#define LUMIGRAM_CORE_PNG_PNG_BLOBS_H_

#include <stdint.h>
#include <stdio.h>

#include "core/base/status.h"

namespace lumigram {

// GetApplicationExtensionDataFromPng() with the capacity of data: a picture may grow after a buffer
// of its size was made. A blob over the capacity is kNoRoom, and nothing of it is copied.
Status CopyBlobFromPng(FILE* stream, uint8_t* data, uint32_t* dataLength, const char* label,
                       const char* fileName, uint32_t capacity);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_PNG_PNG_BLOBS_H_
