// Measures the blobs of a PNG picture, and copies one out of it.
#include "core/png/png_blobs.h"

#include <string.h>

#include <algorithm>

#include "core/png/png_format.h"

namespace lumigram {
namespace {

// The longest label or name that a caller may search for.
constexpr size_t kMaxWantedSize = 65536;

constexpr uint32_t kLabelAndNameLengthSize = kBlobLabelSize + 4;

// Whether the chunk is a blob of ours and, if fileName is given, has a name that begins with it.
// The source is back at the chunk's data afterwards.
Status MatchForCount(ByteSource& source, const char* fileName, bool* counted) {
  const uint64_t start = source.Position();
  uint8_t fields[kLabelAndNameLengthSize];
  const std::span<uint8_t> mark(fields, kBlobMark.size());
  if (!source.Read(mark)) return kMalformed;
  *counted = BeginsWith(mark, kBlobMark);
  if (*counted && fileName != nullptr) {
    const std::span<uint8_t> rest(fields + mark.size(), sizeof(fields) - mark.size());
    if (!source.Read(rest) || !source.Compare(fileName, counted)) return kMalformed;
  }
  return source.Back(source.Position() - start) ? kOk : kBadStream;
}

// The sum exceeds 32 bits only if a chunk runs past the end of the file, and such a chunk is the
// last one.
uint32_t AddChunk(uint32_t size, const ChunkHeader& chunk) {
  return static_cast<uint32_t>(uint64_t{size} + kChunkHeaderSize + chunk.length + kChunkCrcSize);
}

Status CountBlobs(ByteSource& source, const char* fileName, uint32_t* size) {
  for (;;) {
    ChunkHeader chunk;
    if (!ReadChunkHeader(source, &chunk)) return kMalformed;
    if (chunk.type == kEndChunk) return kOk;
    if (chunk.type == kBlobChunk) {
      bool counted;
      if (Status s = MatchForCount(source, fileName, &counted); s != kOk) return s;
      if (counted) *size = AddChunk(*size, chunk);
      if (counted && fileName != nullptr) return kOk;
    }
    if (!SkipChunkData(source, chunk)) return kBadStream;
  }
}

// Counts a chunk if it is a blob of ours. The source is back at the chunk's data afterwards; false
// if the file ends before that.
bool CountChunk(ByteSource& source, const ChunkHeader& chunk, KeptNames* names, BlobSizes* sizes) {
  const uint64_t start = source.Position();
  uint8_t fields[kLabelAndNameLengthSize];
  const std::span<uint8_t> mark(fields, kBlobMark.size());
  if (!source.Read(mark)) return false;
  if (BeginsWith(mark, kBlobMark)) {
    const uint64_t size = kChunkHeaderSize + uint64_t{chunk.length} + kChunkCrcSize;
    sizes->all += size;
    uint8_t name[kLumigramMaxTextBytes];
    if (!source.Read(std::span(fields).subspan(mark.size()))) return false;
    const size_t left = static_cast<size_t>(std::min<uint64_t>(source.Remaining(), sizeof(name)));
    if (!source.Read({name, left})) return false;
    sizes->kept += size * names->TakeFound({reinterpret_cast<const char*>(name), left});
  }
  return source.Back(source.Position() - start);
}

// Whether the chunk is the wanted blob. If so, the source is at its data length, else back at the
// chunk's data. A wanted label over 11 bytes is also compared with the bytes after the stored
// label.
Status MatchBlob(ByteSource& source, const WantedBlob& wanted, bool* found) {
  const uint64_t start = source.Position();
  if (!source.Compare(wanted.label, found)) return kMalformed;
  if (!source.Back(source.Position() - start)) return kBadStream;
  if (!*found) return kOk;
  uint8_t label[kBlobLabelSize];
  uint32_t nameLength;
  if (!source.Read(label) || !source.ReadBe32(&nameLength) || !source.Compare(wanted.name, found)) {
    return kMalformed;
  }
  if (!*found) return source.Back(source.Position() - start) ? kOk : kBadStream;
  const uint32_t wantedLength = static_cast<uint32_t>(wanted.name.size());
  // The stored name may be longer than the wanted one: skip the rest of it.
  return nameLength <= wantedLength || source.Skip(nameLength - wantedLength) ? kOk : kBadStream;
}

Status FindBlob(ByteSource& source, const WantedBlob& wanted, bool* found) {
  for (*found = false;;) {
    ChunkHeader chunk;
    if (!ReadChunkHeader(source, &chunk)) return kMalformed;
    if (chunk.type == kEndChunk) return kOk;
    if (chunk.type == kBlobChunk) {
      if (Status s = MatchBlob(source, wanted, found); s != kOk || *found) return s;
    }
    if (!SkipChunkData(source, chunk)) return kBadStream;
  }
}

}  // namespace

Status CopyBlobFromPng(ByteSource& source, const WantedBlob& wanted, OutputBuffer* data,
                       uint32_t* dataLength) {
  *dataLength = 0;
  if (wanted.label.size() > kMaxWantedSize || wanted.name.size() > kMaxWantedSize) {
    return kBadArgument;
  }
  if (!source.Measure()) return kBadStream;
  PngHead head;
  if (!source.Read(head.bytes) || !head.HasSignature()) return kMalformed;
  if (!IsEmojiSized(head)) return kDimensions;
  bool found;
  if (Status s = FindBlob(source, wanted, &found); s != kOk) return s;
  if (!found) return kNoBlob;
  uint32_t size;
  if (!source.ReadBe32(&size)) return kMalformed;
  if (size > source.Remaining()) return kBadBlob;
  if (data != nullptr) {
    if (Status s = CopyBytes(source, size, *data); s != kOk) return s;
  }
  *dataLength = size;
  return kOk;
}

Status CopyFoundBlobFromPng(ByteSource& source, const FoundBlob& blob, OutputBuffer& data) {
  return source.MoveTo(blob.position) ? CopyBytes(source, blob.size, data) : kBadStream;
}

BlobSizes MeasureBlobsInPng(ByteSource& source, const RecordToWrite& record) {
  BlobSizes sizes;
  KeptNames names(record);
  PngHead head;
  if (!source.Read(head.bytes)) return sizes;
  ChunkHeader chunk;
  while (ReadChunkHeader(source, &chunk) && chunk.type != kEndChunk) {
    if (chunk.type == kBlobChunk && !CountChunk(source, chunk, &names, &sizes)) break;
    if (!SkipChunkData(source, chunk)) break;
  }
  return sizes;
}

}  // namespace lumigram

using namespace lumigram;

int32_t GetSizeApplicationExtensionFromPng(FILE* stream, uint32_t* size, const char* fileName) {
  if (stream == nullptr || size == nullptr) return kBadArgument;
  *size = 0;
  if (fileName != nullptr && strlen(fileName) > kMaxWantedSize) return kBadArgument;
  ByteSource source(stream);
  if (!source.Measure()) return kBadStream;
  PngHead head;
  if (!source.Read(head.bytes)) return kMalformed;
  if (Status s = CountBlobs(source, fileName, size); s != kOk) return s;
  return source.Rewind() ? kOk : kBadStream;
}

int32_t GetApplicationExtensionDataFromPng(FILE* stream, uint8_t* data, uint32_t* dataLength,
                                           const char* label, const char* fileName) {
  if (stream == nullptr || data == nullptr || dataLength == nullptr || label == nullptr ||
      fileName == nullptr) {
    return kBadArgument;
  }
  ByteSource source(stream);
  OutputBuffer room(data, UINT32_MAX);  // The caller promises that data holds the blob.
  const Status s = CopyBlobFromPng(source, {label, fileName}, &room, dataLength);
  return s == kNoBlob ? kOk : s;
}
