// A record written into a picture: the document, the new picture in memory, the file.
#include "core/file/replace_file.h"
#include "core/write/build_picture.h"
#include "core/write/document_builder.h"

using namespace lumigram;

int32_t SetXmlStringToFile(FILE* stream, const char* path, const AttrInfo* attr,
                           FileType fileType) {
  if (stream == nullptr || path == nullptr || attr == nullptr) return kNullArgument;
  XmlStringInfo document;
  if (Status s = BuildDocument(*attr, &document); s != kOk) return s;
  NewPicture picture;
  if (Status s = BuildPicture(stream, fileType, document, *attr, &picture); s != kOk) return s;
  return ReplaceFile(path, {picture.bytes.get(), picture.length});
}
