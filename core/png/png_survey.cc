// Finds the documents and blobs of a PNG picture, and its end.
#include <algorithm>

#include "core/document/document_format.h"
#include "core/png/png_blobs.h"
#include "core/png/png_format.h"

namespace lumigram {
namespace {

// Reads the start of the chunk's data: as much as the room, the chunk and the file have.
std::span<const uint8_t> ReadStart(ByteSource& source, const ChunkHeader& chunk,
                                   std::span<uint8_t> room) {
  const uint64_t size = std::min<uint64_t>({chunk.length, source.Remaining(), room.size()});
  const std::span<uint8_t> start = room.first(static_cast<size_t>(size));
  return source.Read(start) ? start : room.first(0);
}

bool IsDocument(ByteSource& source, const ChunkHeader& chunk) {
  uint8_t room[kDocumentKeyword.size() + kMinPngDocument];
  const auto start = ReadStart(source, chunk, room);
  return start.size() == sizeof(room) && BeginsWith(start, kDocumentKeyword) &&
         BeginsWith(start.subspan(kDocumentKeyword.size()), kRootStart);
}

// A blob is broken unless its name and data fit into its chunk, and the file has both.
void SurveyBlob(ByteSource& source, const ChunkHeader& chunk, Survey* survey,
                const BlobVisitor& visit) {
  const uint64_t end = source.Position() + std::min<uint64_t>(chunk.length, source.Remaining());
  uint8_t label[kBlobLabelSize], name[kLumigramMaxTextBytes];
  const auto start = ReadStart(source, chunk, label);
  if (!BeginsWith(start, kBlobMark)) {
    ++survey->foreignBlobs;
    return;
  }
  uint32_t nameSize = 0, size = 0;
  const bool isNamed = start.size() == sizeof(label) && source.ReadBe32(&nameSize) &&
                       source.Position() + nameSize + sizeof(size) <= end;
  const uint32_t shown = std::min<uint32_t>(nameSize, sizeof(name));
  if (!isNamed || !source.Read({name, shown}) || !source.Skip(nameSize - shown) ||
      !source.ReadBe32(&size) || size > end - source.Position()) {
    ++survey->brokenBlobs;
    return;
  }
  visit({{reinterpret_cast<const char*>(label), sizeof(label)},
         {reinterpret_cast<const char*>(name), shown},
         source.Position(),
         size});
}

}  // namespace

Status SurveyPng(ByteSource& source, Survey* survey, const BlobVisitor& visit) {
  PngHead head;
  if (!source.Measure()) return kBadStream;
  if (!source.Read(head.bytes) || !head.HasSignature()) return kMalformed;
  bool imageFound = false;
  ChunkHeader chunk;
  do {
    if (!ReadChunkHeader(source, &chunk)) return kMalformed;
    const uint64_t start = source.Position();
    imageFound = imageFound || chunk.type == kImageChunk;
    if (chunk.type == kTextChunk && IsDocument(source, chunk)) survey->CountDocument(imageFound);
    if (chunk.type == kBlobChunk) SurveyBlob(source, chunk, survey, visit);
    if (!source.Back(source.Position() - start) || !SkipChunkData(source, chunk)) return kBadStream;
  } while (chunk.type != kEndChunk);
  survey->end = source.Position();
  return kOk;
}

}  // namespace lumigram
