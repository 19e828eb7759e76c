// The blobs of a GIF picture: their sizes, and the bytes of one.
#ifndef LUMIGRAM_CORE_GIF_GIF_BLOBS_H_
#define LUMIGRAM_CORE_GIF_GIF_BLOBS_H_

#include <stdint.h>

#include "core/base/byte_source.h"
#include "core/base/output_buffer.h"
#include "core/base/status.h"
#include "core/document/blob_entries.h"
#include "core/document/survey.h"

namespace lumigram {

// As GetApplicationExtensionDataFromGif(), from any source, into an empty buffer. With data null,
// only stores the length. Returns kNoBlob if there is no such blob; kNoRoom for a blob that does not
// fit: the picture may have grown since the buffer was made.
Status CopyBlobFromGif(ByteSource& source, const WantedBlob& wanted, OutputBuffer* data,
                       uint32_t* dataLength);

// Appends the data of a blob that a survey has found. Returns kOk; kBadStream; kMalformed if the
// picture has become shorter; kNoRoom.
Status CopyFoundBlobFromGif(ByteSource& source, const FoundBlob& blob, OutputBuffer& data);

// As GetSizeApplicationExtensionFromGif(), for all blobs and for each that the record keeps, in one
// walk. If the walk fails, the result is the count up to there. The source is not put back.
BlobSizes MeasureBlobsInGif(ByteSource& source, const RecordToWrite& record);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_GIF_GIF_BLOBS_H_
