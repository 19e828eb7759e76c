// Reads a PNG picture's document and dimensions.
#include <string.h>

#include <algorithm>

#include "core/base/status.h"
#include "core/document/document_format.h"
#include "core/png/png_format.h"

namespace lumigram {
namespace {

// Reads the text of a chunk that has our keyword, and its CRC. A text that is empty or over the
// limit is refused, even if the document has already been found.
Status ReadText(ByteSource& source, uint32_t textSize, char* xmlBuf, bool* taken) {
  if (textSize == 0 || textSize > kLumigramMaxDocumentBytes) return kTooLong;
  uint8_t text[kLumigramMaxDocumentBytes + kChunkCrcSize];
  const std::span<uint8_t> read(text, textSize + kChunkCrcSize);
  if (!source.Read(read)) return kMalformed;
  if (!*taken && textSize >= kMinPngDocument && BeginsWith(read, kRootStart)) {
    memcpy(xmlBuf, text, textSize);
    *taken = true;
  }
  return kOk;
}

Status ReadTextChunk(ByteSource& source, const ChunkHeader& chunk, char* xmlBuf, bool* taken) {
  uint8_t keyword[kDocumentKeyword.size()];
  if (!source.Read(keyword)) return kMalformed;
  if (chunk.length < kDocumentKeyword.size()) return kBadStream;
  const uint32_t textSize = chunk.length - static_cast<uint32_t>(kDocumentKeyword.size());
  if (textSize > source.Remaining()) return kBadStream;
  if (BeginsWith(keyword, kDocumentKeyword)) return ReadText(source, textSize, xmlBuf, taken);
  return source.Skip(uint64_t{textSize} + kChunkCrcSize) ? kOk : kBadStream;
}

// Passes a chunk, all of whose data are one part of the fingerprint.
bool PassBlob(ByteSource& source, const ChunkHeader& chunk, Fingerprint* fingerprint) {
  const uint64_t end = source.Position() + std::min<uint64_t>(chunk.length, source.Remaining());
  while (source.Position() < end) {
    uint8_t room[512];
    const std::span<uint8_t> piece(
        room, static_cast<size_t>(std::min<uint64_t>(sizeof(room), end - source.Position())));
    if (!source.Read(piece)) return false;
    fingerprint->Add({reinterpret_cast<const char*>(room), piece.size()});
  }
  fingerprint->EndPart();
  return source.Skip(kChunkCrcSize);
}

Status ReadChunks(ByteSource& source, const ReaderOutputs& out) {
  bool taken = false;
  for (;;) {
    ChunkHeader chunk;
    if (!ReadChunkHeader(source, &chunk)) return kMalformed;
    if (chunk.type == kEndChunk) return kOk;
    if (chunk.type == kTextChunk) {
      if (Status s = ReadTextChunk(source, chunk, out.document, &taken); s != kOk) return s;
    } else if (chunk.type == kBlobChunk && out.fingerprint != nullptr) {
      if (!PassBlob(source, chunk, out.fingerprint)) return kMalformed;
    } else if (!SkipChunkData(source, chunk)) {
      return kMalformed;
    }
  }
}

}  // namespace

Status ReadPngDocument(ByteSource& source, const ReaderOutputs& out) {
  if (!source.Measure()) return kBadStream;
  PngHead head;
  if (!source.Read(head.bytes) || !head.HasSignature()) return kMalformed;
  *out.width = static_cast<int32_t>(head.Width());
  *out.height = static_cast<int32_t>(head.Height());
  if (!IsEmojiSized(head)) return kDimensions;
  return ReadChunks(source, out);
}

}  // namespace lumigram

using namespace lumigram;

int32_t GetXmlStringFromPng(FILE* stream, char* xmlBuf, uint32_t* height, uint32_t* width) {
  if (stream == nullptr || xmlBuf == nullptr) return kBadArgument;
  ByteSource source(stream);
  return ReadPngDocument(source, {xmlBuf, reinterpret_cast<int32_t*>(height),
                                  reinterpret_cast<int32_t*>(width), nullptr});
}
