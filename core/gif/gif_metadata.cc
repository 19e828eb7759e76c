// The blocks that carry a new document and new blobs.
#include <string.h>

#include <algorithm>

#include "core/document/document_format.h"
#include "core/file/path.h"
#include "core/gif/gif_format.h"
#include "core/gif/gif_writer.h"

namespace lumigram {
namespace {

Status PutText(std::string_view text, OutputBuffer& out) {
  while (!text.empty()) {
    const std::string_view piece(text.data(), std::min<size_t>(text.size(), kMaxSubBlock));
    if (!PutSubBlock(out, piece)) return kNoRoom;
    text.remove_prefix(piece.size());
  }
  return PutSubBlock(out, {}) ? kOk : kNoRoom;
}

// Puts as many bytes as the file had when it was measured; none of one that cannot be measured.
Status PutFile(const char* path, OutputBuffer& out) {
  const ScopedFile file(OpenForReading(path));
  if (file == nullptr) return kBadBlob;
  int32_t left = GetFileLength(file.get());
  ByteSource source(file.get());
  if (left > 0 && !source.Measure()) return kBadBlob;
  while (left > 0) {
    const uint32_t size = std::min<uint32_t>(static_cast<uint32_t>(left), kMaxSubBlock);
    if (!out.PutByte(static_cast<uint8_t>(size))) return kNoRoom;
    if (CopyBytes(source, size, out) != kOk) return kBadBlob;
    left -= static_cast<int32_t>(size);
  }
  return PutSubBlock(out, {}) ? kOk : kNoRoom;
}

Status PutBlob(const AppExtEntry& entry, OutputBuffer& out) {
  // Without a name the block would end where its name is due, and its data would be taken for
  // blocks.
  const std::string_view name = TextOf(entry.fileName);
  if (name.empty()) return kBadArgument;
  char label[kBlobLabelSize + 1] = {};
  CopyText(label, TextOf(entry.labelName));
  const uint8_t introducer[] = {kGifExtension, kGifApplication};
  const std::string_view stored(name.data(), std::min<size_t>(name.size(), kMaxSubBlock));
  if (!out.Put(introducer) || !PutSubBlock(out, {label, kBlobLabelSize}) ||
      !PutSubBlock(out, stored))
    return kNoRoom;
  char path[sizeof(entry.binaryDataUri)];
  CopyText(path, TextOf(entry.binaryDataUri));
  return PutFile(path, out);
}

}  // namespace

Status SetMetadataBlocksToGif(const XmlStringInfo* doc, uint32_t* position, uint8_t* out,
                              const AttrInfo* attr, uint32_t outCapacity) {
  if (doc == nullptr || position == nullptr || out == nullptr || attr == nullptr)
    return kBadArgument;
  if (doc->length > kLumigramMaxDocumentBytes) return kTooLong;
  OutputBuffer buffer(out, outCapacity, *position);
  const size_t length = doc->length > 0 ? static_cast<size_t>(doc->length) : 0;
  if (Status s = PutText({doc->text, length}, buffer); s != kOk) return s;
  for (const AppExtEntry& entry : attr->appExt) {
    if (!IsNew(entry) || entry.labelName[0] == '\0') continue;
    if (Status s = PutBlob(entry, buffer); s != kOk) return s;
  }
  *position = buffer.Size();
  return kOk;
}

}  // namespace lumigram
