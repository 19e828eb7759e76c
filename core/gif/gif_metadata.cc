// Builds the blocks that carry a new document and new blobs.
#include <string.h>

#include <algorithm>

#include "core/document/new_blob.h"
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

// Appends as many bytes as a file had when it was measured; none if it cannot be measured.
Status PutData(const NewBlob& blob, OutputBuffer& out) {
  if (!blob.IsThere()) return kBadBlob;
  ByteSource source = blob.Source();
  const bool isMeasured = source.Measure();
  while (isMeasured && source.Remaining() > 0) {
    const uint64_t size = std::min<uint64_t>(source.Remaining(), kMaxSubBlock);
    if (!out.PutByte(static_cast<uint8_t>(size))) return kNoRoom;
    const Status s = CopyBytes(source, size, out);
    if (s != kOk) return s == kMalformed ? kBadBlob : s;
  }
  return PutSubBlock(out, {}) ? kOk : kNoRoom;
}

Status PutBlob(const AppExtEntry& entry, const NewBlob& blob, OutputBuffer& out) {
  // An empty name is stored as a terminator: the extension would end there, and its data would be
  // taken for blocks.
  const std::string_view name = TextOf(entry.fileName);
  if (name.empty()) return kBadArgument;
  char label[kBlobLabelSize + 1] = {};
  CopyText(label, TextOf(entry.labelName));
  const uint8_t introducer[] = {kGifExtension, kGifApplication};
  const std::string_view stored(name.data(), std::min<size_t>(name.size(), kMaxSubBlock));
  if (!out.Put(introducer) || !PutSubBlock(out, {label, kBlobLabelSize}) ||
      !PutSubBlock(out, stored))
    return kNoRoom;
  return PutData(blob, out);
}

}  // namespace

Status SetMetadataBlocksToGif(const XmlStringInfo& doc, const RecordToWrite& record,
                              OutputBuffer& out) {
  if (doc.length > kLumigramMaxDocumentBytes) return kTooLong;
  if (Status s = PutText({doc.text, static_cast<size_t>(doc.length)}, out); s != kOk) return s;
  for (size_t i = 0; i < std::size(record.attr.appExt); ++i) {
    const AppExtEntry& entry = record.attr.appExt[i];
    if (!record.IsNew(i) || entry.labelName[0] == '\0') continue;
    if (Status s = PutBlob(entry, NewBlob(record, i), out); s != kOk) return s;
  }
  return kOk;
}

}  // namespace lumigram
