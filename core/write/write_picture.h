// Writes a record into a picture.
#ifndef LUMIGRAM_CORE_WRITE_WRITE_PICTURE_H_
#define LUMIGRAM_CORE_WRITE_WRITE_PICTURE_H_

#include "core/base/byte_source.h"
#include "core/base/status.h"

namespace lumigram {

// As SetXmlStringToFile(), from any source.
Status WritePicture(ByteSource& source, const char* path, const AttrInfo& attr, FileType fileType);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_WRITE_WRITE_PICTURE_H_
