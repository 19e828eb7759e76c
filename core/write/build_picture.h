// Builds a complete picture with new metadata in memory.
#ifndef LUMIGRAM_CORE_WRITE_BUILD_PICTURE_H_
#define LUMIGRAM_CORE_WRITE_BUILD_PICTURE_H_

#include <stdint.h>

#include "core/base/byte_source.h"
#include "core/base/kind.h"
#include "core/base/output_buffer.h"
#include "core/base/scoped.h"
#include "core/base/status.h"
#include "core/document/blob_entries.h"

namespace lumigram {

struct NewPicture {
  ScopedBlock<uint8_t> bytes;
  uint32_t length = 0;
};

// Builds the new picture from the source, whatever its position, the document and the record's
// blobs. With a document of length 0, the new picture has no document and no new blobs; it has the
// blobs that the record keeps. The source is not put back.
Status BuildPicture(ByteSource& source, Kind kind, const XmlStringInfo& document,
                    const RecordToWrite& record, NewPicture* picture);

// The same, into an empty buffer of the caller. Returns kNoRoom for a picture that does not fit.
Status BuildPicture(ByteSource& source, Kind kind, const XmlStringInfo& document,
                    const RecordToWrite& record, OutputBuffer& picture);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_WRITE_BUILD_PICTURE_H_
