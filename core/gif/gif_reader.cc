// Reads a GIF picture's document, dimensions and pop flag.
#include <span>
#include <string_view>

#include "core/base/output_buffer.h"
#include "core/document/blob_entries.h"
#include "core/document/document_format.h"
#include "core/gif/gif_format.h"

namespace lumigram {
namespace {

constexpr std::string_view kPopMarker = "HTMLEMJI1.0";
constexpr std::string_view kCreatorKey = "Creator=";
constexpr std::string_view kEmojiIdKey = "EmojiID=";
constexpr std::string_view kLineEnd = "\r\n";

// Removes the accepted characters from the start of the text. False when there are none.
bool TakeValue(std::string_view* text) {
  size_t n = 0;
  while (n < text->size() && IsAcceptPopCommentData(static_cast<uint8_t>((*text)[n])) == kOk) ++n;
  text->remove_prefix(n);
  return n > 0;
}

// Whether the text is Creator=VALUE, a line end, any text, EmojiID=VALUE, and ends there.
bool IsCreatorComment(std::string_view text) {
  text.remove_prefix(kCreatorKey.size());
  if (!TakeValue(&text) || !BeginsWith(text, kLineEnd)) return false;
  text.remove_prefix(kLineEnd.size());
  const size_t key = text.find(kEmojiIdKey);
  if (key == std::string_view::npos) return false;
  text.remove_prefix(key + kEmojiIdKey.size());
  return TakeValue(&text) && text.empty();
}

class DocumentReader {
 public:
  const bool done = false;  // The walk never ends early.

  explicit DocumentReader(const ReaderOutputs& out)
      : out_(out), document_(reinterpret_cast<uint8_t*>(out.document), kLumigramMaxDocumentBytes) {}

  Status Read(ByteSource& source);
  Status OnComment(ByteSource& source);
  Status OnApplication(ByteSource& source);
  Status OnImage(const GifImage& image) const;

 private:
  Status ReadScreen(ByteSource& source, GifScreen* screen) const;
  Status PassApplication(ByteSource& source, uint8_t size) const;
  Status TakeSubBlock(std::string_view text);

  const ReaderOutputs out_;
  OutputBuffer document_;
  bool started_ = false;
  bool complete_ = false;
  bool markerFound_ = false;
};

Status DocumentReader::Read(ByteSource& source) {
  GifScreen screen;
  if (Status s = ReadScreen(source, &screen); s != kOk) return s;
  if (Status s = WalkGifBlocks(source, screen, *this); s != kOk) return s;
  if (!markerFound_) *out_.pop = 0;
  return kOk;
}

Status DocumentReader::ReadScreen(ByteSource& source, GifScreen* screen) const {
  const std::span<uint8_t> bytes(screen->bytes);
  const std::span<uint8_t> signature = bytes.first(GifScreen::kSignatureSize);
  if (!source.Read(signature)) return kMalformed;
  if (BeginsWith(signature, kGif89Signature)) *out_.pop = 1;
  if (!source.Read(bytes.subspan(GifScreen::kSignatureSize))) return kMalformed;
  *out_.width = screen->Width();
  *out_.height = screen->Height();
  return IsEmojiSized(*screen) ? kOk : kDimensions;
}

Status DocumentReader::OnImage(const GifImage& image) const {
  if (!IsEmojiSized(image)) return kDimensions;
  if (image.Height() > *out_.height) *out_.height = image.Height();
  if (image.Width() > *out_.width) *out_.width = image.Width();
  return kOk;
}

// The pop marker is its identifier and at least one sub-block with data. The size of the identifier
// is not checked: its bytes decide.
Status DocumentReader::OnApplication(ByteSource& source) {
  uint8_t size;
  if (!source.ReadByte(&size)) return kMalformed;
  if (*out_.pop != 1) return PassApplication(source, size);
  uint8_t identifier[kPopMarker.size()];
  if (!source.Read(identifier)) return kMalformed;
  if (!BeginsWith(identifier, kPopMarker))
    return source.Back(sizeof(identifier)) ? PassApplication(source, size) : kBadStream;
  if (!source.ReadByte(&size)) return kMalformed;
  if (size != 0) markerFound_ = true;
  return SkipChain(source, size);
}

// Passes an extension after the size byte of its identifier. Of a blob, identifier, name and data are
// a part each of the fingerprint: how the data are cut into sub-blocks does not matter.
Status DocumentReader::PassApplication(ByteSource& source, uint8_t size) const {
  if (out_.fingerprint == nullptr) return SkipChain(source, size);
  GifSubBlock block = {size, {}};
  if (!source.Read({block.bytes, size})) return kMalformed;
  if (size == 0 || !BeginsWith(block.Data(), kBlobMark)) return size == 0 ? kOk : SkipChain(source);
  for (int passed = 0; block.size != 0; ++passed) {
    out_.fingerprint->Add(block.Data());
    if (passed < 2) out_.fingerprint->EndPart();
    if (!ReadSubBlock(source, &block)) return kMalformed;
  }
  out_.fingerprint->EndPart();
  return kOk;
}

Status DocumentReader::OnComment(ByteSource& source) {
  GifSubBlock block;
  if (!source.ReadByte(&block.size)) return kMalformed;
  while (block.size != 0) {
    // Each sub-block of every comment must fit into the room that the document leaves, even if it
    // is not copied. This is checked before the read, so that kTooLong wins over kMalformed.
    if (document_.Size() + block.size > kLumigramMaxDocumentBytes) return kTooLong;
    if (!source.Read({block.bytes, block.size})) return kMalformed;
    if (Status s = TakeSubBlock(block.Data()); s != kOk) return s;
    if (!source.ReadByte(&block.size)) return kMalformed;
  }
  complete_ = started_;
  return kOk;
}

Status DocumentReader::TakeSubBlock(std::string_view text) {
  if (BeginsWith(text, kCreatorKey) && *out_.pop == 1 && markerFound_ && !IsCreatorComment(text))
    *out_.pop = 0;
  if (complete_ || (!started_ && !BeginsWith(text, kRootStart))) return kOk;
  started_ = true;
  return document_.Put(text) ? kOk : kTooLong;
}

}  // namespace

Status ReadGifDocument(ByteSource& source, const ReaderOutputs& out) {
  if (!source.Measure()) return kBadStream;
  return DocumentReader(out).Read(source);
}

}  // namespace lumigram

using namespace lumigram;

int32_t GetXmlStringFromGif(FILE* stream, char* xmlBuf, int32_t* height, int32_t* width,
                            int32_t* pop) {
  if (stream == nullptr || xmlBuf == nullptr) return kBadArgument;
  ByteSource source(stream);
  return ReadGifDocument(source, {xmlBuf, height, width, pop});
}

int32_t IsAcceptPopCommentData(int32_t byte) {
  const bool accepted = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
                        (byte >= 'a' && byte <= 'z') || byte == '.' || byte == '_' || byte == '-';
  return accepted ? kOk : kFailed;
}
