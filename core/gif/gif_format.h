// How a GIF file is laid out, as far as its metadata needs it, and the walk over its blocks.
// docs/gif.md shows where the metadata lies.
#ifndef LUMIGRAM_CORE_GIF_GIF_FORMAT_H_
#define LUMIGRAM_CORE_GIF_GIF_FORMAT_H_

#include <stdint.h>

#include <span>

#include "core/base/byte_source.h"
#include "core/base/bytes.h"
#include "core/base/output_buffer.h"
#include "core/base/status.h"

namespace lumigram {

// What a block begins with.
inline constexpr uint8_t kGifExtension = 0x21;  // a label and a chain of sub-blocks follow
inline constexpr uint8_t kGifImage = 0x2C;
inline constexpr uint8_t kGifTrailer = 0x3B;

// Labels of extensions.
inline constexpr uint8_t kGifPlainText = 0x01;
inline constexpr uint8_t kGifGraphicControl = 0xF9;
inline constexpr uint8_t kGifComment = 0xFE;
inline constexpr uint8_t kGifApplication = 0xFF;

inline constexpr uint32_t kMaxSubBlock = 255;

// What a file begins with: signature, logical screen, packed fields of the global colour table.
struct GifScreen {
  static constexpr size_t kSignatureSize = 6;
  uint8_t bytes[13];
  uint16_t Width() const { return LoadLe16(bytes + 6); }
  uint16_t Height() const { return LoadLe16(bytes + 8); }
  uint8_t Packed() const { return bytes[10]; }
};

// What follows an image's introducer: place, size, packed fields of the local colour table.
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

// False when the source is short.
[[nodiscard]] bool ReadSubBlock(ByteSource& source, GifSubBlock* block);

// Appends a sub-block of at most 255 bytes; without bytes, a terminator. False when it does not
// fit.
[[nodiscard]] bool PutSubBlock(OutputBuffer& out, std::string_view data);

// Whether a screen or an image is small enough to be read.
template <typename Sized>
bool IsEmojiSized(const Sized& sized) {
  return sized.Width() <= kLumigramMaxPixels && sized.Height() <= kLumigramMaxPixels;
}

// Skips a chain of sub-blocks and its terminator; with a size, that of a first sub-block whose size
// byte has been read.
Status SkipChain(ByteSource& source);
Status SkipChain(ByteSource& source, uint8_t size);

// Skips what follows an image's descriptor. Image data that claims at least all that is left of the
// file ends there.
Status SkipImage(ByteSource& source, const GifImage& image);

// What a function that walks a picture's blocks derives from: it hides the hooks it needs.
// OnComment and OnApplication begin right behind the label and end behind the extension.
struct GifHandler {
  bool done = false;  // set by a hook that needs no more of the picture
  Status OnComment(ByteSource& source) { return SkipChain(source); }
  Status OnImage(const GifImage&) { return kOk; }
};

template <typename Handler>
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
      // Not a chain that we know of: what follows is looked through for the next block.
      return kOk;
  }
}

template <typename Handler>
Status WalkGifImage(ByteSource& source, Handler& handler) {
  GifImage image;
  if (!source.Read(image.bytes)) return kMalformed;
  if (Status s = handler.OnImage(image); s != kOk) return s;
  return SkipImage(source, image);
}

// Walks from behind the screen up to the trailer, for the functions that only read. Between blocks
// every byte that begins none is passed over, and the file's last byte, whatever it is, ends the
// walk; the first byte behind the colour table alone must not be the last, unless it is the
// trailer.
template <typename Handler>
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
Status ReadGifDocument(ByteSource& source, char* xmlBuf, int32_t* height, int32_t* width,
                       int32_t* pop);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_GIF_GIF_FORMAT_H_
