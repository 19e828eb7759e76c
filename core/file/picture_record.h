// Reads the whole metadata of one picture.
#ifndef LUMIGRAM_CORE_FILE_PICTURE_RECORD_H_
#define LUMIGRAM_CORE_FILE_PICTURE_RECORD_H_

#include "core/base/byte_source.h"
#include "core/base/fingerprint.h"
#include "core/base/kind.h"
#include "core/base/status.h"

namespace lumigram {

// As GetPictureRecord(), from any source, without its limit on the size. The fingerprint, which may
// be null, takes the document and the blobs.
Status ReadPictureRecord(ByteSource& source, Kind kind, AttrInfo* attr, PictureSummary* summary,
                         Fingerprint* fingerprint);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_FILE_PICTURE_RECORD_H_
