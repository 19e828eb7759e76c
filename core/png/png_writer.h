// Builds a PNG picture with a new document and new blobs in memory.
#ifndef LUMIGRAM_CORE_PNG_PNG_WRITER_H_
#define LUMIGRAM_CORE_PNG_PNG_WRITER_H_

#include <stdint.h>

#include "core/base/byte_source.h"
#include "core/base/output_buffer.h"
#include "core/base/status.h"
#include "core/document/blob_entries.h"
#include "lumigram.h"

namespace lumigram {

// Appends the picture with the new document and the record's blobs. The source must be measured
// and at the picture's start; it is not put back. With a document of length 0 or less, no
// document and no new blob are written. Returns kOk; kMalformed for a wrong signature or a
// truncated picture; kTooLong for a document over 10,234 bytes; kBadStream for a chunk that runs
// past the end of the file; kBadBlob; kNoRoom. After a failure out holds a part of the picture.
Status SetXmlStringToPng(ByteSource& source, const XmlStringInfo& doc, const RecordToWrite& record,
                         OutputBuffer& out);

// Appends the document chunk, and then one chunk for each new blob.
Status SetMetadataChunksToPng(const XmlStringInfo& doc, const RecordToWrite& record,
                              OutputBuffer& out);

// Appends the CRC of a chunk whose type and dataLength bytes of data are the last bytes of out.
Status SetChunkCrc(uint32_t dataLength, OutputBuffer& out);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_PNG_PNG_WRITER_H_
