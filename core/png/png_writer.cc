// Copies a PNG picture chunk by chunk, up to its end chunk. All chunks but documents and blobs are
// copied unchanged.
#include "core/png/png_writer.h"

#include "core/document/blob_entries.h"
#include "core/document/document_format.h"
#include "core/png/png_format.h"

namespace lumigram {
namespace {

// A longer stored name is refused.
constexpr uint32_t kMaxStoredName = 65537;

// The state of a copy. documentDue: there is a new document, and it has not been appended yet.
struct Copy {
  ByteSource& source;
  const XmlStringInfo& doc;
  const RecordToWrite& record;
  OutputBuffer& out;
  const KeptNames kept;
  bool documentDue;
};

struct Chunk {
  ChunkHeader header;
  uint64_t start;
  uint64_t size;
};

// A chunk that runs past the end of the file is refused before its type is read.
Status ReadWholeChunk(ByteSource& source, Chunk* chunk) {
  const uint64_t left = source.Remaining();
  chunk->start = source.Position();
  if (!source.ReadBe32(&chunk->header.length)) return kMalformed;
  chunk->size = kChunkHeaderSize + uint64_t{chunk->header.length} + kChunkCrcSize;
  if (chunk->size > left) return kBadStream;
  return source.ReadBe32(&chunk->header.type) ? kOk : kMalformed;
}

// Whether the reader would take the text chunk for a document.
Status IsOldDocument(ByteSource& source, const Chunk& chunk, bool* isDocument) {
  uint8_t keyword[kDocumentKeyword.size()];
  uint8_t root[sizeof(kRootStart) - 1];
  if (!source.Read(keyword)) return kMalformed;
  *isDocument = false;
  if (chunk.header.length < kDocumentKeyword.size() + kMinPngDocument ||
      !BeginsWith(keyword, kDocumentKeyword)) {
    return kOk;
  }
  if (!source.Read(root)) return kMalformed;
  *isDocument = BeginsWith(root, kRootStart);
  return kOk;
}

// Reads only as many bytes of the stored name as the name of an entry can have.
Status IsKeptBlob(ByteSource& source, const KeptNames& names, bool* kept) {
  uint8_t label[kBlobLabelSize];
  if (!source.Read(label)) return kMalformed;
  *kept = false;
  if (!BeginsWith(label, kBlobMark)) return kOk;
  uint32_t nameLength;
  if (!source.ReadBe32(&nameLength)) return kMalformed;
  if (nameLength > source.Remaining() || nameLength > kMaxStoredName) return kBadBlob;
  uint8_t name[kLumigramMaxTextBytes];
  const std::span<uint8_t> read(name, nameLength < sizeof(name) ? nameLength : sizeof(name));
  if (!source.Read(read)) return kMalformed;
  *kept = names.Keep({reinterpret_cast<const char*>(name), read.size()});
  return kOk;
}

Status PutMetadata(Copy& copy) {
  if (!copy.documentDue) return kOk;
  copy.documentDue = false;
  return SetMetadataChunksToPng(copy.doc, copy.record, copy.out);
}

// Copies or skips the whole chunk.
Status FinishChunk(Copy& copy, const Chunk& chunk, bool kept) {
  const uint64_t taken = copy.source.Position() - chunk.start;
  if (!copy.source.Back(static_cast<uint32_t>(taken))) return kBadStream;
  if (!kept) return copy.source.Skip(chunk.size) ? kOk : kBadStream;
  return CopyBytes(copy.source, chunk.size, copy.out);
}

// New metadata replace the first old document, or precede the first image data chunk if that comes
// first.
Status CopyChunk(Copy& copy, const Chunk& chunk) {
  const uint32_t type = chunk.header.type;
  bool isDocument = false, kept = true;
  Status s = kOk;
  if (type == kTextChunk) s = IsOldDocument(copy.source, chunk, &isDocument);
  if (type == kBlobChunk) s = IsKeptBlob(copy.source, copy.kept, &kept);
  if (s == kOk && (isDocument || type == kImageChunk)) s = PutMetadata(copy);
  return s == kOk ? FinishChunk(copy, chunk, kept && !isDocument) : s;
}

Status CopyHead(Copy& copy) {
  PngHead head;
  if (!copy.source.Read(head.bytes) || !head.HasSignature()) return kMalformed;
  return copy.out.Put(head.bytes) ? kOk : kNoRoom;
}

Status CopyPicture(Copy& copy) {
  if (Status s = CopyHead(copy); s != kOk) return s;
  Chunk chunk;
  do {
    if (Status s = ReadWholeChunk(copy.source, &chunk); s != kOk) return s;
    if (Status s = CopyChunk(copy, chunk); s != kOk) return s;
  } while (chunk.header.type != kEndChunk);
  return kOk;
}

}  // namespace

Status SetXmlStringToPng(ByteSource& source, const XmlStringInfo& doc, const RecordToWrite& record,
                         OutputBuffer& out) {
  Copy copy{source, doc, record, out, KeptNames(record), doc.length > 0};
  return CopyPicture(copy);
}

}  // namespace lumigram
