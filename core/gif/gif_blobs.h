// Measures all blobs of a GIF picture at once, and copies one out of it.
#ifndef LUMIGRAM_CORE_GIF_GIF_BLOBS_H_
#define LUMIGRAM_CORE_GIF_GIF_BLOBS_H_

#include <stdint.h>
#include <stdio.h>

#include "core/base/byte_source.h"
#include "core/base/status.h"
#include "core/document/kept_blobs.h"

namespace lumigram {

// As GetApplicationExtensionDataFromGif(), for data of at most capacity bytes: -99 for a blob that
// does not fit, as one may that comes from a file that has grown since its size was taken.
Status CopyBlobFromGif(FILE* stream, uint8_t* data, uint32_t* dataLength, const char* label,
                       const char* fileName, uint32_t capacity);

// As GetSizeApplicationExtensionFromGif(), for all blobs and for each that the record keeps, in one
// walk. What a walk that fails has counted so far counts; the source, which is measured, is not
// put back.
BlobSizes MeasureBlobsInGif(ByteSource& source, const AttrInfo& attr);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_GIF_GIF_BLOBS_H_
