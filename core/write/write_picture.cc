// Builds the document, builds the new picture in memory, and replaces the file.
#include "core/write/write_picture.h"

#include "core/document/document_builder.h"
#include "core/write/build_picture.h"
#include "core/write/replace_file.h"

namespace lumigram {

Status WritePicture(ByteSource& source, const char* path, const AttrInfo& attr, FileType fileType) {
  XmlStringInfo document;
  if (Status s = BuildDocument(attr, &document); s != kOk) return s;
  const std::optional<Kind> kind = KindOf(fileType);
  if (!kind) return kBadArgument;
  NewPicture picture;
  if (Status s = BuildPicture(source, *kind, document, attr, &picture); s != kOk) return s;
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
