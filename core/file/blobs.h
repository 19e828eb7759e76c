// The blob functions of each kind of container.
#ifndef LUMIGRAM_CORE_FILE_BLOBS_H_
#define LUMIGRAM_CORE_FILE_BLOBS_H_

#include <stdint.h>

#include "core/base/byte_source.h"
#include "core/base/kind.h"
#include "core/base/output_buffer.h"
#include "core/base/status.h"
#include "core/document/blob_entries.h"
#include "core/document/survey.h"

namespace lumigram {

struct BlobFunctions {
  BlobSizes (*measure)(ByteSource& source, const RecordToWrite& record);
  // Copies the data of a blob, or only stores their length if data is null.
  Status (*copy)(ByteSource& source, const WantedBlob& wanted, OutputBuffer* data,
                 uint32_t* dataLength);
  // Appends the data of a blob that a survey has found.
  Status (*copyFound)(ByteSource& source, const FoundBlob& blob, OutputBuffer& data);
};

// Null for a kind that carries no blobs.
const BlobFunctions* BlobFunctionsOf(Kind kind);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_FILE_BLOBS_H_
