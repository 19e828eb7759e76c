// Reads a GIF picture's document, dimensions and pop flag.
#include <span>
#include <string_view>

#include "core/base/output_buffer.h"
#include "core/document/document_format.h"
#include "core/gif/gif_format.h"

namespace lumigram {
namespace {

constexpr std::string_view kPopSignature = "GIF89a";
constexpr std::string_view kPopMarker = "HTMLEMJI1.0";
constexpr std::string_view kCreatorKey = "Creator=";
constexpr std::string_view kEmojiIdKey = "EmojiID=";
constexpr std::string_view kLineEnd = "\r\n";

// Cuts the accepted characters off the beginning of the text; whether there were any.
bool TakeValue(std::string_view* text) {
  size_t n = 0;
  while (n < text->size() && IsAcceptPopCommentData(static_cast<uint8_t>((*text)[n])) == kOk) ++n;
  text->remove_prefix(n);
  return n > 0;
}

// Creator=VALUE, a line end, anything, EmojiID=VALUE up to the end.
bool IsCreatorComment(std::string_view text) {
  text.remove_prefix(kCreatorKey.size());
  if (!TakeValue(&text) || !BeginsWith(text, kLineEnd)) return false;
  text.remove_prefix(kLineEnd.size());
  const size_t key = text.find(kEmojiIdKey);
  if (key == std::string_view::npos) return false;
  text.remove_prefix(key + kEmojiIdKey.size());
  return TakeValue(&text) && text.empty();
}

class DocumentReader : public GifHandler {
 public:
  DocumentReader(char* xmlBuf, int32_t* height, int32_t* width, int32_t* pop)
      : document_(reinterpret_cast<uint8_t*>(xmlBuf), kLumigramMaxDocumentBytes),
        height_(height),
        width_(width),
        pop_(pop) {}

  Status Read(ByteSource& source);
  Status OnComment(ByteSource& source);
  Status OnApplication(ByteSource& source);
  Status OnImage(const GifImage& image);

 private:
  Status ReadScreen(ByteSource& source, GifScreen* screen);
  Status TakeSubBlock(std::string_view text);

  OutputBuffer document_;
  int32_t* const height_;
  int32_t* const width_;
  int32_t* const pop_;
  bool started_ = false;
  bool complete_ = false;
  bool markerFound_ = false;
};

Status DocumentReader::Read(ByteSource& source) {
  GifScreen screen;
  if (Status s = ReadScreen(source, &screen); s != kOk) return s;
  if (Status s = WalkGifBlocks(source, screen, *this); s != kOk) return s;
  if (!markerFound_) *pop_ = 0;
  return kOk;
}

Status DocumentReader::ReadScreen(ByteSource& source, GifScreen* screen) {
  const std::span<uint8_t> bytes(screen->bytes);
  const std::span<uint8_t> signature = bytes.first(GifScreen::kSignatureSize);
  if (!source.Read(signature)) return kMalformed;
  if (BeginsWith(signature, kPopSignature)) *pop_ = 1;
  if (!source.Read(bytes.subspan(GifScreen::kSignatureSize))) return kMalformed;
  *width_ = screen->Width();
  *height_ = screen->Height();
  return IsEmojiSized(*screen) ? kOk : kDimensions;
}

Status DocumentReader::OnImage(const GifImage& image) {
  if (!IsEmojiSized(image)) return kDimensions;
  if (image.Height() > *height_) *height_ = image.Height();
  if (image.Width() > *width_) *width_ = image.Width();
  return kOk;
}

// The pop marker: its identifier, then at least one sub-block with data. The identifier's size is
// not asked: its bytes decide.
Status DocumentReader::OnApplication(ByteSource& source) {
  uint8_t size;
  if (!source.ReadByte(&size)) return kMalformed;
  if (*pop_ != 1) return SkipChain(source, size);
  uint8_t identifier[kPopMarker.size()];
  if (!source.Read(identifier)) return kMalformed;
  if (!BeginsWith(identifier, kPopMarker))
    return source.Back(sizeof(identifier)) ? SkipChain(source, size) : kBadStream;
  if (!source.ReadByte(&size)) return kMalformed;
  if (size != 0) markerFound_ = true;
  return SkipChain(source, size);
}

Status DocumentReader::OnComment(ByteSource& source) {
  GifSubBlock block;
  if (!source.ReadByte(&block.size)) return kMalformed;
  while (block.size != 0) {
    // Every comment of the file is held to the room that the document leaves, also one that is not
    // copied, and before it is known whether the file has its bytes.
    if (document_.Size() + block.size > kLumigramMaxDocumentBytes) return kTooLong;
    if (!source.Read({block.bytes, block.size})) return kMalformed;
    if (Status s = TakeSubBlock(block.Data()); s != kOk) return s;
    if (!source.ReadByte(&block.size)) return kMalformed;
  }
  complete_ = started_;
  return kOk;
}

Status DocumentReader::TakeSubBlock(std::string_view text) {
  if (BeginsWith(text, kCreatorKey) && *pop_ == 1 && markerFound_ && !IsCreatorComment(text))
    *pop_ = 0;
  if (complete_ || (!started_ && !BeginsWith(text, kRootStart))) return kOk;
  started_ = true;
  return document_.Put(text) ? kOk : kTooLong;
}

}  // namespace

Status ReadGifDocument(ByteSource& source, char* xmlBuf, int32_t* height, int32_t* width,
                       int32_t* pop) {
  if (!source.Measure()) return kBadStream;
  return DocumentReader(xmlBuf, height, width, pop).Read(source);
}

}  // namespace lumigram

using namespace lumigram;

int32_t GetXmlStringFromGif(FILE* stream, char* xmlBuf, int32_t* height, int32_t* width,
                            int32_t* pop) {
  if (stream == nullptr || xmlBuf == nullptr) return kBadArgument;
  ByteSource source(stream);
  return ReadGifDocument(source, xmlBuf, height, width, pop);
}

int32_t IsAcceptPopCommentData(int32_t byte) {
  const bool accepted = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
                        (byte >= 'a' && byte <= 'z') || byte == '.' || byte == '_' || byte == '-';
  return accepted ? kOk : kFailed;
}
