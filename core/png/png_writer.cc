// A PNG picture with a new document and new blobs: every other chunk is copied as it is, up to the
// end chunk.
#include "core/png/png_writer.h"

#include "core/base/output_buffer.h"
#include "core/document/document_format.h"
#include "core/png/png_format.h"

namespace lumigram {
namespace {

// Longer stored names are refused.
constexpr uint32_t kMaxStoredName = 65537;

// A copy under way. documentDue: there is a new document, and it is not written yet.
struct Copy {
  ByteSource& source;
  const XmlStringInfo& doc;
  const AttrInfo* attr;
  bool documentDue;
  uint8_t* out;
  uint32_t capacity;
  uint32_t position = 0;
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

// What makes a text chunk the document, for the reader.
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

bool IsNamed(const AttrInfo& attr, std::span<const uint8_t> storedName) {
  for (const AppExtEntry& entry : attr.appExt) {
    if (IsKept(entry) && BeginsWith(storedName, TextOf(entry.fileName))) return true;
  }
  return false;
}

// Of the stored name, no more is read than an entry's name can be long.
Status IsKeptBlob(ByteSource& source, const AttrInfo* attr, bool* kept) {
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
  if (attr == nullptr) return kBadArgument;
  *kept = IsNamed(*attr, read);
  return kOk;
}

Status PutMetadata(Copy& copy) {
  if (!copy.documentDue) return kOk;
  copy.documentDue = false;
  return SetMetadataChunksToPng(&copy.doc, &copy.position, copy.out, copy.attr, copy.capacity);
}

// Copies or passes over the chunk, from its first byte on.
Status FinishChunk(Copy& copy, const Chunk& chunk, bool kept) {
  const uint64_t taken = copy.source.Position() - chunk.start;
  if (!copy.source.Back(static_cast<uint32_t>(taken))) return kBadStream;
  if (!kept) return copy.source.Skip(chunk.size) ? kOk : kBadStream;
  OutputBuffer out(copy.out, copy.capacity, copy.position);
  const Status s = CopyBytes(copy.source, chunk.size, out);
  copy.position = out.Size();
  return s;
}

// The new metadata stand where the first old document stood, or else before the image data.
Status CopyChunk(Copy& copy, const Chunk& chunk) {
  const uint32_t type = chunk.header.type;
  bool isDocument = false, kept = true;
  Status s = kOk;
  if (type == kTextChunk) s = IsOldDocument(copy.source, chunk, &isDocument);
  if (type == kBlobChunk) s = IsKeptBlob(copy.source, copy.attr, &kept);
  if (s == kOk && (isDocument || type == kImageChunk)) s = PutMetadata(copy);
  return s == kOk ? FinishChunk(copy, chunk, kept && !isDocument) : s;
}

Status CopyHead(Copy& copy) {
  PngHead head;
  if (!copy.source.Read(head.bytes) || !head.HasSignature()) return kMalformed;
  OutputBuffer out(copy.out, copy.capacity);
  if (!out.Put(head.bytes)) return kNoRoom;
  copy.position = out.Size();
  return kOk;
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

Status SetXmlStringToPng(ByteSource& source, const XmlStringInfo* doc, uint8_t* out,
                         uint32_t* outLength, const AttrInfo* attr, uint32_t outCapacity) {
  if (doc == nullptr || out == nullptr || outLength == nullptr) {
    return kBadArgument;
  }
  Copy copy{source, *doc, attr, doc->length > 0, out, outCapacity};
  if (Status s = CopyPicture(copy); s != kOk) return s;
  *outLength = copy.position;
  return kOk;
}

}  // namespace lumigram
