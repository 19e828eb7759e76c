// The chunks that carry a new document and new blobs.
#include <string.h>

#include "core/base/output_buffer.h"
#include "core/document/document_format.h"
#include "core/file/path.h"
#include "core/png/crc32.h"
#include "core/png/png_format.h"
#include "core/png/png_writer.h"

namespace lumigram {
namespace {

constexpr int32_t kMaxNewDocument =
    kLumigramMaxDocumentBytes - static_cast<int32_t>(kDocumentKeyword.size());

Status PutDocument(const XmlStringInfo& doc, uint32_t* position, uint8_t* out,
                   uint32_t outCapacity) {
  const std::string_view text(doc.text, static_cast<size_t>(doc.length));
  const uint32_t length = static_cast<uint32_t>(kDocumentKeyword.size() + text.size());
  OutputBuffer buffer(out, outCapacity, *position);
  if (!buffer.PutBe32(length) || !buffer.PutBe32(kTextChunk) || !buffer.Put(kDocumentKeyword) ||
      !buffer.Put(text)) {
    return kNoRoom;
  }
  *position = buffer.Size();
  return SetChunkCrc(length, position, out, outCapacity);
}

// The blob's file is read straight to where it belongs.
Status PutBlob(const AppExtEntry& entry, uint32_t* position, uint8_t* out, uint32_t outCapacity) {
  char path[sizeof(entry.binaryDataUri)];
  CopyText(path, TextOf(entry.binaryDataUri));
  const ScopedFile file(OpenForReading(path));
  const int32_t fileLength = GetFileLength(file.get());
  if (fileLength < 0) return kBadBlob;

  const uint32_t size = static_cast<uint32_t>(fileLength);
  const std::string_view name = TextOf(entry.fileName);
  const uint32_t nameSize = static_cast<uint32_t>(name.size());
  const uint32_t length = kBlobFieldsSize + nameSize + size;
  uint8_t label[kBlobLabelSize] = {};
  memcpy(label, entry.labelName, strnlen(entry.labelName, kBlobLabelSize));
  OutputBuffer buffer(out, outCapacity, *position);
  if (!buffer.PutBe32(length) || !buffer.PutBe32(kBlobChunk) || !buffer.Put(label) ||
      !buffer.PutBe32(nameSize) || !buffer.Put(name) || !buffer.PutBe32(size)) {
    return kNoRoom;
  }
  uint8_t* data = buffer.Claim(size);
  if (data == nullptr) return kNoRoom;
  if (fread(data, 1, size, file.get()) != size) return kBadBlob;
  *position = buffer.Size();
  return SetChunkCrc(length, position, out, outCapacity);
}

}  // namespace

Status SetChunkCrc(uint32_t dataLength, uint32_t* position, uint8_t* out, uint32_t outCapacity) {
  if (position == nullptr || out == nullptr) return kBadArgument;
  const uint64_t covered = uint64_t{dataLength} + kChunkTypeSize;
  if (covered > *position) return kBadArgument;
  OutputBuffer buffer(out, outCapacity, *position);
  uint8_t* crc = buffer.Claim(kChunkCrcSize);
  if (crc == nullptr) return kNoRoom;
  StoreBe32(Crc32({crc - covered, static_cast<size_t>(covered)}), crc);
  *position = buffer.Size();
  return kOk;
}

Status SetMetadataChunksToPng(const XmlStringInfo* doc, uint32_t* position, uint8_t* out,
                              const AttrInfo* attr, uint32_t outCapacity) {
  if (doc == nullptr || position == nullptr || out == nullptr || doc->length < 0) {
    return kBadArgument;
  }
  if (doc->length > kMaxNewDocument) return kTooLong;
  if (Status s = PutDocument(*doc, position, out, outCapacity); s != kOk) return s;
  if (attr == nullptr) return kBadArgument;
  for (const AppExtEntry& entry : attr->appExt) {
    if (!IsNew(entry)) continue;
    if (Status s = PutBlob(entry, position, out, outCapacity); s != kOk) return s;
  }
  return kOk;
}

}  // namespace lumigram
