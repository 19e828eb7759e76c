// The layout of a GIF file, as far as its metadata needs it, and the walk over its blocks.
// docs/gif.md shows the places of the metadata.
#ifndef LUMIGRAM_CORE_GIF_GIF_FORMAT_H_
#define LUMIGRAM_CORE_GIF_GIF_FORMAT_H_

#include <stdint.h>

#include <concepts>
#include <span>
#include <string_view>

#include "core/base/byte_source.h"
#include "core/base/bytes.h"
#include "core/base/output_buffer.h"
#include "core/base/status.h"
#include "core/document/reader_outputs.h"
#include "core/document/survey.h"

namespace lumigram {

inline constexpr std::string_view kGif87Signature = "GIF87a";
inline constexpr std::string_view kGif89Signature = "GIF89a";

// The first byte of a block.
inline constexpr uint8_t kGifExtension = 0x21;  // a label and a chain of sub-blocks follow
inline constexpr uint8_t kGifImage = 0x2C;
inline constexpr uint8_t kGifTrailer = 0x3B;

// Labels of extensions.
inline constexpr uint8_t kGifPlainText = 0x01;
inline constexpr uint8_t kGifGraphicControl = 0xF9;
inline constexpr uint8_t kGifComment = 0xFE;
inline constexpr uint8_t kGifApplication = 0xFF;

inline constexpr uint32_t kMaxSubBlock = 255;

// The start of a file: signature, logical screen, packed fields of the global colour table.
struct GifScreen {
  static constexpr size_t kSignatureSize = 6;
  uint8_t bytes[13];
  uint16_t Width() const { return LoadLe16(bytes + 6); }
  uint16_t Height() const { return LoadLe16(bytes + 8); }
  uint8_t Packed() const { return bytes[10]; }
};

// An image descriptor after its introducer: position, size, packed fields of the local colour
// table.
struct GifImage {
  uint8_t bytes[9];
  uint16_t Width() const { return LoadLe16(bytes + 4); }
  uint16_t Height() const { return LoadLe16(bytes + 6); }
  uint8_t Packed() const { return bytes[8]; }
};

struct GifSubBlock {
  uint8_t size;  // 0: the terminator of its chain, without bytes
  uint8_t bytes[kMaxSubBlock];
  std::string_view Data() const { return {reinterpret_cast<const char*>(bytes), size}; }
};

// Reads a size byte and its bytes. False when the source is short.
[[nodiscard]] bool ReadSubBlock(ByteSource& source, GifSubBlock* block);

// Appends a sub-block of at most 255 bytes; without bytes, a terminator. False when it does not
// fit.
[[nodiscard]] bool PutSubBlock(OutputBuffer& out, std::string_view data);

// Skips a chain of sub-blocks and its terminator. The second form begins after the size byte of the
// first sub-block.
Status SkipChain(ByteSource& source);
Status SkipChain(ByteSource& source, uint8_t size);

// Skips the rest of an image after its descriptor. A sub-block that claims all remaining bytes of
// the file, or more, ends the image data and is not skipped.
Status SkipImage(ByteSource& source, const GifImage& image);

// Receives the blocks of a walk. OnComment and OnApplication begin right after the label and
// consume the whole extension. The walk ends early when done is set. All hooks are required, so
// that a misspelt one does not compile.
template <typename T>
concept GifHandler = requires(T handler, ByteSource& source, const GifImage& image) {
  { handler.done } -> std::convertible_to<bool>;
  { handler.OnComment(source) } -> std::same_as<Status>;
  { handler.OnApplication(source) } -> std::same_as<Status>;
  { handler.OnImage(image) } -> std::same_as<Status>;
};

// For handlers that look at application extensions only.
struct PassesCommentsAndImages {
  bool done = false;
  Status OnComment(ByteSource& source) { return SkipChain(source); }
  Status OnImage(const GifImage&) { return kOk; }
};

template <GifHandler Handler>
Status WalkGifExtension(ByteSource& source, Handler& handler) {
  uint8_t label;
  if (!source.ReadByte(&label)) return kMalformed;
  switch (label) {
    case kGifComment:
      return handler.OnComment(source);
    case kGifApplication:
      return handler.OnApplication(source);
    case kGifPlainText:
    case kGifGraphicControl:
      return SkipChain(source);
    default:
      // An unknown extension may have no chain: the walk searches the next bytes for a block.
      return kOk;
  }
}

template <GifHandler Handler>
Status WalkGifImage(ByteSource& source, Handler& handler) {
  GifImage image;
  if (!source.Read(image.bytes)) return kMalformed;
  if (Status s = handler.OnImage(image); s != kOk) return s;
  return SkipImage(source, image);
}

// Walks from the screen up to the trailer, for the functions that only read. Bytes between blocks
// are skipped. The walk ends at the trailer or at the last byte of the file. Exception: the first
// byte after the colour table may be the last one only if it is the trailer.
template <GifHandler Handler>
Status WalkGifBlocks(ByteSource& source, const GifScreen& screen, Handler& handler) {
  if (!source.Skip(GetSizeColorTable(screen.Packed()))) return kBadStream;
  uint8_t introducer;
  if (!source.ReadByte(&introducer)) return kMalformed;
  while (introducer != kGifTrailer) {
    Status s = kOk;
    if (introducer == kGifExtension) s = WalkGifExtension(source, handler);
    if (introducer == kGifImage) s = WalkGifImage(source, handler);
    if (s != kOk || handler.done) return s;
    if (!source.ReadByte(&introducer)) return kMalformed;
    if (source.Remaining() == 0) break;
  }
  return kOk;
}

// As GetXmlStringFromGif(), from any source.
Status ReadGifDocument(ByteSource& source, const ReaderOutputs& out);

// Fills the survey of a picture that the reader accepts, and calls the visitor for each blob.
// Returns kOk; kMalformed or kBadStream if the walk cannot continue.
Status SurveyGif(ByteSource& source, Survey* survey, const BlobVisitor& visit);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_GIF_GIF_FORMAT_H_
