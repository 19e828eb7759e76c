// Builds, in memory, a GIF picture with a new document and new blobs.
#ifndef LUMIGRAM_CORE_GIF_GIF_WRITER_H_
#define LUMIGRAM_CORE_GIF_GIF_WRITER_H_

#include <stdint.h>

#include "core/base/byte_source.h"
#include "core/base/status.h"

namespace lumigram {

// Copies the picture with a new document and blobs to out, at most outCapacity bytes, and stores
// its length on success. The source is measured, and is not put back. A doc length of 0 or less
// writes no document and no new blob.
Status SetXmlStringToGif(ByteSource& source, const XmlStringInfo* doc, uint8_t* out,
                         uint32_t* outLength, const AttrInfo* attr, uint32_t outCapacity);

// Appends, at *position, all of the document comment behind its introducer and label, then the new
// blobs; advances *position.
Status SetMetadataBlocksToGif(const XmlStringInfo* doc, uint32_t* position, uint8_t* out,
                              const AttrInfo* attr, uint32_t outCapacity);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_GIF_GIF_WRITER_H_
