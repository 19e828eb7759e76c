// Reads the whole metadata of one picture.
#ifndef LUMIGRAM_CORE_FILE_PICTURE_RECORD_H_
#define LUMIGRAM_CORE_FILE_PICTURE_RECORD_H_

#include "core/base/byte_source.h"
#include "core/base/kind.h"
#include "core/base/status.h"

namespace lumigram {

// As GetPictureRecord(), from any source, without its limit on the size.
Status ReadPictureRecord(ByteSource& source, Kind kind, AttrInfo* attr, PictureSummary* summary);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_FILE_PICTURE_RECORD_H_
