// The layout of metadata in a PNG file (docs/png.md). All integers are big-endian.
//
//   signature     8
//   first chunk   25   taken to be the image header: width at 16, height at 20 of the file
//   chunk         12 + length: length (4, of the data only), type (4), data, CRC (4); up to "IEND"
//
//   "tEXt"   the document: "Emoji", 00, text
//   "emJe"   a blob: label (11), name length (4), name, data length (4), data
#ifndef LUMIGRAM_CORE_PNG_PNG_FORMAT_H_
#define LUMIGRAM_CORE_PNG_PNG_FORMAT_H_

#include <stdint.h>

#include <string_view>

#include "core/base/byte_source.h"
#include "core/base/bytes.h"
#include "core/base/status.h"
#include "core/document/blob_entries.h"
#include "core/document/reader_outputs.h"
#include "core/document/survey.h"

namespace lumigram {

inline constexpr std::string_view kPngSignature = "\x89PNG\r\n\x1A\n";

// The size of the signature and the first chunk together.
inline constexpr uint32_t kPngHeadSize = 33;

// The parts of a chunk besides its data.
inline constexpr uint32_t kChunkTypeSize = 4;
inline constexpr uint32_t kChunkHeaderSize = 4 + kChunkTypeSize;
inline constexpr uint32_t kChunkCrcSize = 4;

consteval uint32_t ChunkType(const char (&name)[5]) {
  uint32_t type = 0;
  for (int i = 0; i < 4; ++i) type = type << 8 | static_cast<uint8_t>(name[i]);
  return type;
}

inline constexpr uint32_t kTextChunk = ChunkType("tEXt");
inline constexpr uint32_t kBlobChunk = ChunkType("emJe");
inline constexpr uint32_t kImageChunk = ChunkType("IDAT");
inline constexpr uint32_t kEndChunk = ChunkType("IEND");

// The data of a document's text chunk begin with this keyword and its NUL. A text after it that is
// shorter than kMinPngDocument is not a document.
inline constexpr std::string_view kDocumentKeyword{"Emoji", 6};
inline constexpr uint32_t kMinPngDocument = 8;

// The size of a blob chunk's fields besides name and data: label, name length, data length.
inline constexpr uint32_t kBlobFieldsSize = kBlobLabelSize + 4 + 4;

struct ChunkHeader {
  uint32_t length;
  uint32_t type;
};

[[nodiscard]] inline bool ReadChunkHeader(ByteSource& source, ChunkHeader* chunk) {
  return source.ReadBe32(&chunk->length) && source.ReadBe32(&chunk->type);
}

// Skips data and CRC. A length near 2^32 moves to the end of the file, never back.
[[nodiscard]] inline bool SkipChunkData(ByteSource& source, const ChunkHeader& chunk) {
  return source.Skip(uint64_t{chunk.length} + kChunkCrcSize);
}

struct PngHead {
  uint8_t bytes[kPngHeadSize];

  bool HasSignature() const { return BeginsWith(bytes, kPngSignature); }
  uint32_t Width() const { return LoadBe32(bytes + 16); }
  uint32_t Height() const { return LoadBe32(bytes + 20); }
};

// As GetXmlStringFromPng(), from any source.
Status ReadPngDocument(ByteSource& source, const ReaderOutputs& out);

// Fills the survey of a picture that the reader accepts, and calls the visitor for each blob.
// Returns kOk; kMalformed or kBadStream if the walk cannot continue.
Status SurveyPng(ByteSource& source, Survey* survey, const BlobVisitor& visit);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_PNG_PNG_FORMAT_H_
