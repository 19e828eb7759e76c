#include "tools/layout.h"

#include <errno.h>
#include <string.h>

#include <algorithm>
#include <optional>

#include "core/document/document_format.h"
#include "core/gif/gif_format.h"
#include "core/png/png_format.h"
#include "tools/files.h"

namespace lumigram::tool {
namespace {

std::string_view AsText(std::span<const uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string Unpadded(std::string_view label) {
  return std::string(label.substr(0, label.find_last_not_of('\0') + 1));
}

// ---- GIF ----------------------------------------------------------------------------------------

class GifLayout : public GifHandler {
 public:
  // As the reader has it: a document may begin in any sub-block of a comment.
  Status OnComment(ByteSource& source) {
    bool isDocument = false;
    GifSubBlock block;
    do {
      if (!ReadSubBlock(source, &block)) return kMalformed;
      isDocument = isDocument || BeginsWith(block.Data(), kRootStart);
    } while (block.size != 0);
    if (isDocument) layout.MeetDocument(imageMet_);
    return kOk;
  }

  Status OnApplication(ByteSource& source) {
    GifSubBlock identifier, name, data;
    if (!ReadSubBlock(source, &identifier)) return kMalformed;
    if (identifier.size == 0) return kOk;
    if (!BeginsWith(identifier.Data(), kBlobMark)) return SkipChain(source);
    if (!ReadSubBlock(source, &name)) return kMalformed;
    Blob blob = {Unpadded(identifier.Data()), std::string(name.Data()), ""};
    for (data.size = name.size; data.size != 0; blob.bytes += data.Data()) {
      if (!ReadSubBlock(source, &data)) return kMalformed;
    }
    layout.blobs.push_back(std::move(blob));
    return kOk;
  }

  Status OnImage(const GifImage&) {
    imageMet_ = true;
    return kOk;
  }

  Layout layout;

 private:
  bool imageMet_ = false;
};

Layout LayOutGif(const std::vector<uint8_t>& bytes) {
  const ScopedFile stream = OpenMemory(bytes);
  ByteSource source(stream.get());
  GifScreen screen;
  GifLayout handler;
  const bool opened = source.Measure() && source.Read(screen.bytes);
  if (!opened || WalkGifBlocks(source, screen, handler) != kOk) {
    throw Failure(kMalformed, "the blocks of this GIF picture cannot be told apart");
  }
  handler.layout.end = source.Position();
  return handler.layout;
}

// ---- PNG ----------------------------------------------------------------------------------------

// The blob of a chunk's data; none when its lengths do not fit.
std::optional<Blob> ParseBlob(std::span<const uint8_t> data) {
  constexpr size_t kNameStart = kBlobLabelSize + 4;
  if (data.size() < kNameStart + 4) return std::nullopt;
  const uint32_t nameSize = LoadBe32(&data[kBlobLabelSize]);
  if (nameSize > data.size() - kNameStart - 4) return std::nullopt;
  const auto content = data.subspan(kNameStart + nameSize + 4);
  const uint32_t size = LoadBe32(&data[kNameStart + nameSize]);
  if (size > content.size()) return std::nullopt;
  return Blob{Unpadded(AsText(data.first(kBlobLabelSize))),
              std::string(AsText(data.subspan(kNameStart, nameSize))),
              std::string(AsText(content.first(size)))};
}

void MeetBlob(std::span<const uint8_t> data, Layout* layout) {
  const auto blob = ParseBlob(data);
  if (!BeginsWith(data, kBlobMark)) {
    ++layout->foreignBlobs;
  } else if (!blob) {
    ++layout->brokenBlobs;
  } else {
    layout->blobs.push_back(*blob);
  }
}

bool IsDocument(std::span<const uint8_t> data) {
  return data.size() >= kDocumentKeyword.size() + kMinPngDocument &&
         BeginsWith(data, kDocumentKeyword) &&
         BeginsWith(data.subspan(kDocumentKeyword.size()), kRootStart);
}

// The reader has walked over all of these chunks, but for what follows the last one's type.
Layout LayOutPng(std::span<const uint8_t> bytes) {
  Layout layout;
  bool imageMet = false;
  layout.end = kPngHeadSize;
  for (uint32_t type = 0; type != kEndChunk && layout.end + kChunkHeaderSize <= bytes.size();) {
    const uint32_t length = LoadBe32(&bytes[layout.end]);
    type = LoadBe32(&bytes[layout.end + 4]);
    const auto rest = bytes.subspan(layout.end + kChunkHeaderSize);
    const auto data = rest.first(std::min<size_t>(length, rest.size()));
    imageMet = imageMet || type == kImageChunk;
    if (type == kTextChunk && IsDocument(data)) layout.MeetDocument(imageMet);
    if (type == kBlobChunk) MeetBlob(data, &layout);
    layout.end =
        std::min(bytes.size(), layout.end + kChunkHeaderSize + data.size() + kChunkCrcSize);
  }
  return layout;
}

// ---- JPEG ---------------------------------------------------------------------------------------

// The reader has walked over all of these segments.
Layout LayOutJpeg(std::span<const uint8_t> bytes) {
  constexpr uint8_t kEndOfImage = 0xD9, kStartOfScan = 0xDA, kComment = 0xFE;
  Layout layout;
  size_t at = 2;
  for (uint8_t code = 0; code != kStartOfScan && at + 4 <= bytes.size();) {
    code = bytes[at + 1];
    if (code == kEndOfImage) break;
    const auto rest = bytes.subspan(at + 2);
    const auto segment = rest.first(std::min<size_t>(LoadBe16(rest.data()), rest.size()));
    if (code == kComment && BeginsWith(AsText(segment).substr(2), kRootStart)) {
      layout.MeetDocument(false);
    }
    at += 2 + segment.size();
  }
  const size_t end = AsText(bytes).find("\xFF\xD9", at);
  layout.end = end == std::string_view::npos ? bytes.size() : end + 2;
  return layout;
}

}  // namespace

Layout LayOut(FileType type, const std::vector<uint8_t>& bytes) {
  if (type == kFileTypeGif) return LayOutGif(bytes);
  return type == kFileTypePng ? LayOutPng(bytes) : LayOutJpeg(bytes);
}

ScopedFile OpenMemory(const std::vector<uint8_t>& bytes) {
  // Opened for reading only: nothing is written through the pointer.
  ScopedFile stream(fmemopen(const_cast<uint8_t*>(bytes.data()), bytes.size(), "rb"));
  if (stream == nullptr) throw Failure(kNoRoom, strerror(errno));
  return stream;
}

}  // namespace lumigram::tool
