// Builds the document, builds the new picture in memory, and replaces the file.
#include "core/write/write_picture.h"

#include "core/document/document_builder.h"
#include "core/file/extraction.h"
#include "core/write/build_picture.h"
#include "core/write/replace_file.h"

namespace lumigram {
namespace {

Status Build(ByteSource& source, FileType type, const RecordToWrite& record, NewPicture* picture) {
  XmlStringInfo document;
  if (Status s = BuildDocument(record.attr, &document); s != kOk) return s;
  const std::optional<Kind> kind = KindOf(type);
  return kind ? BuildPicture(source, *kind, document, record, picture) : kBadArgument;
}

}  // namespace

Status WritePicture(ByteSource& source, const char* path, const AttrInfo& attr, FileType fileType) {
  NewPicture picture;
  if (Status s = Build(source, fileType, attr, &picture); s != kOk) return s;
  return ReplaceFile(path, {picture.bytes.get(), picture.length});
}

}  // namespace lumigram

using namespace lumigram;

int32_t SetXmlStringToFile(FILE* stream, const char* path, const AttrInfo* attr,
                           FileType fileType) {
  if (stream == nullptr || path == nullptr || attr == nullptr) return kNullArgument;
  ByteSource source(stream);
  return WritePicture(source, path, *attr, fileType);
}

int32_t SetXmlStringToBytes(const uint8_t* bytes, size_t size, FileType type, const AttrInfo* attr,
                            const NewBlobs* newBlobs, uint8_t** outBytes, size_t* outSize) {
  if (attr == nullptr || outBytes == nullptr || outSize == nullptr) return kNullArgument;
  *outBytes = nullptr;
  *outSize = 0;
  if (bytes == nullptr && size > 0) return kNullArgument;
  if (!IsPictureSized(bytes, size)) return kBadStream;
  ByteSource source({bytes, size});
  NewPicture picture;
  const RecordToWrite record(*attr, newBlobs == nullptr ? NewBlobs{} : *newBlobs);
  if (Status s = Build(source, type, record, &picture); s != kOk) return s;
  *outSize = picture.length;
  *outBytes = picture.bytes.release();
  return kOk;
}
