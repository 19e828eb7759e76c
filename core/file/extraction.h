// Picks the reader by the picture's type.
#ifndef LUMIGRAM_CORE_FILE_EXTRACTION_H_
#define LUMIGRAM_CORE_FILE_EXTRACTION_H_

#include <stdint.h>

#include "core/base/byte_source.h"
#include "core/base/status.h"

namespace lumigram {

// As GetXmlString(), which has tested arguments and size before: kNoDocument without a document,
// else the status of the type's reader.
Status ExtractDocument(ByteSource& source, FileType type, char* xmlBuf, int32_t* height,
                       int32_t* width, int32_t* pop);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_FILE_EXTRACTION_H_
