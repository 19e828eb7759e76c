// Builds, in memory, a PNG picture with a new document and new blobs.
#ifndef LUMIGRAM_CORE_PNG_PNG_WRITER_H_
#define LUMIGRAM_CORE_PNG_PNG_WRITER_H_

#include <stdint.h>

#include "core/base/byte_source.h"
#include "core/base/status.h"

namespace lumigram {

// Copies the picture with a new document and blobs to out, at most outCapacity bytes, and stores
// its length on success. The source is measured, and is not put back. A doc length of 0 or less
// writes no document and no new blob.
Status SetXmlStringToPng(ByteSource& source, const XmlStringInfo* doc, uint8_t* out,
                         uint32_t* outLength, const AttrInfo* attr, uint32_t outCapacity);

// Appends, at *position, the document chunk and one chunk for each new blob; advances *position.
Status SetMetadataChunksToPng(const XmlStringInfo* doc, uint32_t* position, uint8_t* out,
                              const AttrInfo* attr, uint32_t outCapacity);

// Appends the CRC of the chunk whose type and dataLength bytes of data end at *position; advances
// *position.
Status SetChunkCrc(uint32_t dataLength, uint32_t* position, uint8_t* out, uint32_t outCapacity);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_PNG_PNG_WRITER_H_
