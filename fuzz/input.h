// Shared by the targets: parsing an input, reading a picture in all ways, and requiring properties.
#ifndef LUMIGRAM_FUZZ_INPUT_H_
#define LUMIGRAM_FUZZ_INPUT_H_

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "core/file/extraction.h"
#include "lumigram.h"
#include "tests/support/bytes.h"

namespace lumigram::fuzz {

using test::Bytes;

inline void Require(bool holds, const char* what) {
  if (holds) return;
  fprintf(stderr, "property broken: %s\n", what);
  abort();
}

inline void RequireStatus(int32_t status, std::initializer_list<int32_t> allowed) {
  Require(std::find(allowed.begin(), allowed.end(), status) != allowed.end(),
          "the status is a documented one");
}

// Takes pieces from the front; the rest is usually the picture. An exhausted input gives zeros and
// empty texts.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : data_(data), size_(size) {}

  uint8_t Byte() {
    if (size_ == 0) return 0;
    --size_;
    return *data_++;
  }
  // Takes two bytes of length and as many bytes of text. The text ends at the first NUL.
  std::string Text(size_t limit) {
    const size_t wanted = std::min<size_t>(Byte() | Byte() << 8, limit);
    const size_t size = std::min(wanted, size_);
    std::string text(reinterpret_cast<const char*>(data_), size);
    data_ += size;
    size_ -= size;
    return text.substr(0, text.find('\0'));
  }
  Bytes Rest() { return Bytes(data_, data_ + size_); }

 private:
  const uint8_t* data_;
  size_t size_;
};

// A heap block of exactly this size, all zero, so that AddressSanitizer finds an access past its
// end.
inline std::unique_ptr<char[]> Block(size_t size) { return std::make_unique<char[]>(size); }

// The outputs of a reader, and the position of the stream after it.
struct ReadResult {
  int32_t status = 0, height = 0, width = 0, pop = 0;
  std::string document;
  long position = 0;

  bool operator==(const ReadResult&) const = default;
};

inline ReadResult ReadPicture(FILE* stream, FileType type) {
  ReadResult result;
  const auto document = Block(kLumigramDocumentBufferBytes);
  uint32_t height = 0, width = 0;
  switch (type) {
    case kFileTypeGif:
      result.status =
          GetXmlStringFromGif(stream, document.get(), &result.height, &result.width, &result.pop);
      break;
    case kFileTypeJpeg:
      result.status = GetXmlStringFromJpg(stream, document.get(), &height, &width);
      break;
    default:
      result.status = GetXmlStringFromPng(stream, document.get(), &height, &width);
  }
  if (type != kFileTypeGif) {
    result.height = static_cast<int32_t>(height);
    result.width = static_cast<int32_t>(width);
  }
  result.document.assign(document.get(), strnlen(document.get(), kLumigramDocumentBufferBytes));
  result.position = ftell(stream);
  return result;
}

inline ReadResult ReadPicture(const Bytes& picture, FileType type) {
  return ReadPicture(test::Stream(picture).get(), type);
}

// Reads as a batch does: from the file's descriptor, without a stream.
inline ReadResult ReadByDescriptor(const Bytes& picture, FileType type) {
  ReadResult result;
  const auto document = Block(kLumigramDocumentBufferBytes);
  const ScopedFile stream = test::Stream(picture);
  ByteSource source(fileno(stream.get()), picture.size());
  result.status = ExtractDocument(source, *KindOf(type),
                                  {document.get(), &result.height, &result.width, &result.pop});
  if (result.status == kLumigramNoDocument) result.status = 0;
  result.document.assign(document.get(), strnlen(document.get(), kLumigramDocumentBufferBytes));
  result.position = static_cast<long>(source.Position());
  return result;
}

// Requires the same results in blocks, through stdio and without a stream, and that the picture
// does not change.
inline void CheckReader(const Bytes& picture, FileType type,
                        std::initializer_list<int32_t> statuses) {
  const ReadResult inBlocks = ReadPicture(picture, type);
  RequireStatus(inBlocks.status, statuses);
  const ScopedFile stream = test::Stream(picture, test::Opened::kForUpdate);
  ReadResult throughStdio = ReadPicture(stream.get(), type);
  ReadResult byDescriptor = ReadByDescriptor(picture, type);
  // After a failure, the position depends on how far the reader read ahead.
  if (inBlocks.status != 0) throughStdio.position = byDescriptor.position = inBlocks.position;
  Require(inBlocks == throughStdio, "both kinds of stream give the same result");
  Require(inBlocks == byDescriptor, "a stream and a descriptor give the same result");
  rewind(stream.get());
  Bytes after(picture.size() + 1);
  Require(fread(after.data(), 1, after.size(), stream.get()) == picture.size(),
          "reading does not change the size");
  after.pop_back();
  Require(after == picture, "reading changes nothing");
}

}  // namespace lumigram::fuzz

#endif  // LUMIGRAM_FUZZ_INPUT_H_
