// Reads one tag group of a picture.
#ifndef LUMIGRAM_CORE_FILE_TAG_INFO_H_
#define LUMIGRAM_CORE_FILE_TAG_INFO_H_

#include "core/base/status.h"
#include "core/file/picture_file.h"

namespace lumigram {

// As GetTagInfo(), for a file that has been opened, but with the status of a reader that fails.
Status LookUpTags(const PictureFile& picture, const char* tagName, char results[10][1025]);
// The same, from any source.
Status LookUpTags(ByteSource& source, Kind kind, const char* tagName, char results[10][1025]);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_FILE_TAG_INFO_H_
