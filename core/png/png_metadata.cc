// Builds the chunks that carry a new document and new blobs.
#include "core/document/new_blob.h"
#include "core/png/crc32.h"
#include "core/png/png_format.h"
#include "core/png/png_writer.h"

namespace lumigram {
namespace {

constexpr int32_t kMaxNewDocument =
    kLumigramMaxDocumentBytes - static_cast<int32_t>(kDocumentKeyword.size());

Status PutDocument(const XmlStringInfo& doc, OutputBuffer& out) {
  const std::string_view text(doc.text, static_cast<size_t>(doc.length));
  const uint32_t length = static_cast<uint32_t>(kDocumentKeyword.size() + text.size());
  if (!out.PutBe32(length) || !out.PutBe32(kTextChunk) || !out.Put(kDocumentKeyword) ||
      !out.Put(text)) {
    return kNoRoom;
  }
  return SetChunkCrc(length, out);
}

// The blob's bytes are read directly into the output.
Status PutBlob(const AppExtEntry& entry, const NewBlob& blob, OutputBuffer& out) {
  if (!blob.IsThere()) return kBadBlob;
  ByteSource source = blob.Source();
  if (!source.Measure()) return kBadBlob;

  const uint32_t size = static_cast<uint32_t>(source.Remaining());
  const std::string_view name = TextOf(entry.fileName);
  const uint32_t nameSize = static_cast<uint32_t>(name.size());
  const uint32_t length = kBlobFieldsSize + nameSize + size;
  char label[kBlobLabelSize + 1] = {};
  CopyText(label, TextOf(entry.labelName));
  if (!out.PutBe32(length) || !out.PutBe32(kBlobChunk) ||
      !out.Put(std::string_view(label, kBlobLabelSize)) || !out.PutBe32(nameSize) ||
      !out.Put(name) || !out.PutBe32(size)) {
    return kNoRoom;
  }
  const Status s = CopyBytes(source, size, out);
  if (s != kOk) return s == kMalformed ? kBadBlob : s;
  return SetChunkCrc(length, out);
}

}  // namespace

Status SetChunkCrc(uint32_t dataLength, OutputBuffer& out) {
  return out.PutBe32(Crc32(out.Last(kChunkTypeSize + dataLength))) ? kOk : kNoRoom;
}

Status SetMetadataChunksToPng(const XmlStringInfo& doc, const RecordToWrite& record,
                              OutputBuffer& out) {
  if (doc.length > kMaxNewDocument) return kTooLong;
  if (Status s = PutDocument(doc, out); s != kOk) return s;
  for (size_t i = 0; i < std::size(record.attr.appExt); ++i) {
    if (!record.IsNew(i)) continue;
    if (Status s = PutBlob(record.attr.appExt[i], NewBlob(record, i), out); s != kOk) return s;
  }
  return kOk;
}

}  // namespace lumigram
