// Builds a JPEG picture with a new document in memory.
#ifndef LUMIGRAM_CORE_JPEG_JPEG_WRITER_H_
#define LUMIGRAM_CORE_JPEG_JPEG_WRITER_H_

#include "core/base/byte_source.h"
#include "core/base/output_buffer.h"
#include "core/base/status.h"
#include "lumigram.h"

namespace lumigram {

// Appends the picture with the new document. The source must be measured and at the picture's
// start; it is not put back. With a document of length 0 or less, none is written. Returns kOk;
// kMalformed for a picture that is damaged or truncated; kTooLong for a document over 10,240
// bytes; kCannotGoBack; kBadStream; kNoRoom. After a failure out holds a part of the picture.
Status SetXmlStringToJpg(ByteSource& source, const XmlStringInfo& doc, OutputBuffer& out);

// Appends length and text of the document's comment segment. The caller has appended its marker.
Status SetCommentSegmentToJpg(const XmlStringInfo& doc, OutputBuffer& out);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_JPEG_JPEG_WRITER_H_
