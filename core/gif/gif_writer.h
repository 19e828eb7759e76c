// Builds a GIF picture with a new document and new blobs in memory.
#ifndef LUMIGRAM_CORE_GIF_GIF_WRITER_H_
#define LUMIGRAM_CORE_GIF_GIF_WRITER_H_

#include "core/base/byte_source.h"
#include "core/base/output_buffer.h"
#include "core/base/status.h"
#include "core/document/blob_entries.h"
#include "lumigram.h"

namespace lumigram {

// Appends the picture with the new document and the record's blobs. The source must be measured
// and at the picture's start; it is not put back. With a document of length 0 or less, no
// document and no new blob are written. Returns kOk; kMalformed for a truncated picture; kTooLong
// for a document over 10,240 bytes; kCannotGoBack; kBadBlob; kBadArgument for a new blob without
// a name; kBadStream; kNoRoom. After a failure out holds a part of the picture.
Status SetXmlStringToGif(ByteSource& source, const XmlStringInfo& doc, const RecordToWrite& record,
                         OutputBuffer& out);

// Appends the document comment, without its introducer and label, and then the new blobs.
Status SetMetadataBlocksToGif(const XmlStringInfo& doc, const RecordToWrite& record,
                              OutputBuffer& out);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_GIF_GIF_WRITER_H_
