// The document, the new picture in memory, the file.
#include "core/write/write_picture.h"

#include "core/file/replace_file.h"
#include "core/write/build_picture.h"
#include "core/write/document_builder.h"

namespace lumigram {

Status WritePicture(ByteSource& source, const char* path, const AttrInfo& attr, FileType fileType) {
  XmlStringInfo document;
  if (Status s = BuildDocument(attr, &document); s != kOk) return s;
  NewPicture picture;
  if (Status s = BuildPicture(source, fileType, document, attr, &picture); s != kOk) return s;
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
