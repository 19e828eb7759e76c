// Builds, in memory, a JPEG picture with a new document.
#ifndef LUMIGRAM_CORE_JPEG_JPEG_WRITER_H_
#define LUMIGRAM_CORE_JPEG_JPEG_WRITER_H_

#include <stdint.h>

#include "core/base/byte_source.h"
#include "core/base/status.h"

namespace lumigram {

// Copies the picture with a new document to out, at most outCapacity bytes, and stores its length
// on success. The source is measured, and is not put back. A doc length of 0 or less writes no
// document.
Status SetXmlStringToJpg(ByteSource& source, const XmlStringInfo* doc, uint8_t* out,
                         uint32_t* outLength, uint32_t outCapacity);

// Appends, at *position, the length and text of the document's comment segment, behind its marker;
// advances *position.
Status SetCommentSegmentToJpg(const XmlStringInfo* doc, uint32_t* position, uint8_t* out,
                              uint32_t outCapacity);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_JPEG_JPEG_WRITER_H_
