// Reads or surveys a picture of any kind.
#ifndef LUMIGRAM_CORE_FILE_EXTRACTION_H_
#define LUMIGRAM_CORE_FILE_EXTRACTION_H_

#include "core/base/byte_source.h"
#include "core/base/kind.h"
#include "core/base/status.h"
#include "core/document/reader_outputs.h"
#include "core/document/survey.h"

namespace lumigram {

// Whether a caller's stream or memory can be a picture that is read: of at most 2 MiB. Stores the
// size of the stream. Memory may be null if it is empty.
bool IsPictureSized(FILE* stream, int32_t* size);
bool IsPictureSized(const uint8_t* bytes, size_t size);

// As GetXmlString(), after its checks of arguments and size. Returns kNoDocument without a
// document, kBadArgument for an unknown kind, else the status of the kind's reader.
Status ExtractDocument(ByteSource& source, Kind kind, const ReaderOutputs& out);

// Surveys a picture from its start, whatever the position of the source. Calls the visitor for each
// blob.
Status SurveyPicture(ByteSource& source, Kind kind, Survey* survey, const BlobVisitor& visit);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_FILE_EXTRACTION_H_
