// The measuring of all blobs of a PNG picture at once, and the copying of one into a buffer of
// known size.
#ifndef LUMIGRAM_CORE_PNG_PNG_BLOBS_H_
#define LUMIGRAM_CORE_PNG_PNG_BLOBS_H_

#include <stdint.h>
#include <stdio.h>

#include "core/base/byte_source.h"
#include "core/base/status.h"
#include "core/document/kept_blobs.h"

namespace lumigram {

// GetApplicationExtensionDataFromPng() with the capacity of data: a picture may grow after a buffer
// of its size was made. A blob over the capacity is kNoRoom, and nothing of it is copied.
Status CopyBlobFromPng(FILE* stream, uint8_t* data, uint32_t* dataLength, const char* label,
                       const char* fileName, uint32_t capacity);

// As GetSizeApplicationExtensionFromPng(), for all blobs and for each that the record keeps, in one
// walk. What a walk that fails has counted so far counts; the source, which is measured, is not
// put back.
BlobSizes MeasureBlobsInPng(ByteSource& source, const AttrInfo& attr);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_PNG_PNG_BLOBS_H_
