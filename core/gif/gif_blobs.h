// Copies a blob out of a GIF picture.
#ifndef LUMIGRAM_CORE_GIF_GIF_BLOBS_H_
#define LUMIGRAM_CORE_GIF_GIF_BLOBS_H_

#include <stdint.h>
#include <stdio.h>

#include "core/base/status.h"

namespace lumigram {

// As GetApplicationExtensionDataFromGif(), for data of at most capacity bytes: -99 for a blob that
// does not fit, as one may that comes from a file that has grown since its size was taken.
Status CopyBlobFromGif(FILE* stream, uint8_t* data, uint32_t* dataLength, const char* label,
                       const char* fileName, uint32_t capacity);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_GIF_GIF_BLOBS_H_
