// A picture with new metadata, complete and in memory.
#ifndef LUMIGRAM_CORE_WRITE_BUILD_PICTURE_H_
#define LUMIGRAM_CORE_WRITE_BUILD_PICTURE_H_

#include <stdint.h>

#include "core/base/byte_source.h"
#include "core/base/scoped.h"
#include "core/base/status.h"

namespace lumigram {

struct NewPicture {
  ScopedBlock<uint8_t> bytes;
  uint32_t length = 0;
};

// Builds the new picture from the source, whatever its position, the document and the record's
// blobs. Knows no target. A document of length 0 removes document and, but for those that the
// record keeps, blobs. The source is not put back.
Status BuildPicture(ByteSource& source, FileType fileType, const XmlStringInfo& document,
                    const AttrInfo& attr, NewPicture* picture);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_WRITE_BUILD_PICTURE_H_
