// Measures the blobs of a GIF picture, and copies one out of it.
#include "core/gif/gif_blobs.h"

#include <string_view>

#include "core/base/output_buffer.h"
#include "core/gif/gif_format.h"

namespace lumigram {
namespace {

// The longest label or name that a caller may search for.
constexpr size_t kMaxWanted = 12289;

// The bytes of a blob's extension before the sub-block with its name: introducer, extension label,
// size of the identifier, identifier.
constexpr uint32_t kBlockHead = 3 + kBlobLabelSize;

Status ReadScreen(ByteSource& source, GifScreen* screen) {
  if (!source.Measure()) return kBadStream;
  return source.Read(screen->bytes) ? kOk : kMalformed;
}

// Counts only bytes that the file has, even if a sub-block of a truncated picture claims more.
Status CountChain(ByteSource& source, uint32_t* total) {
  uint8_t size;
  do {
    if (!source.ReadByte(&size)) return kMalformed;
    *total += 1;
    if (size > source.Remaining()) return kMalformed;
    if (!source.Skip(size)) return kBadStream;
    *total += size;
  } while (size != 0);
  return kOk;
}

class BlobMeter : public PassesCommentsAndImages {
 public:
  // The name's data() is null to count all blobs.
  BlobMeter(std::string_view fileName, uint32_t* size) : fileName_(fileName), size_(size) {}

  Status OnApplication(ByteSource& source);

 private:
  Status CountNamed(ByteSource& source);

  const std::string_view fileName_;
  uint32_t* const size_;
};

Status BlobMeter::OnApplication(ByteSource& source) {
  GifSubBlock identifier;
  if (!ReadSubBlock(source, &identifier)) return kMalformed;
  if (identifier.size == 0) return kOk;
  if (!BeginsWith(identifier.Data(), kBlobMark)) return SkipChain(source);
  if (fileName_.data() != nullptr) return CountNamed(source);
  *size_ += kBlockHead;
  return CountChain(source, size_);
}

Status BlobMeter::CountNamed(ByteSource& source) {
  GifSubBlock name;
  if (!ReadSubBlock(source, &name)) return kMalformed;
  if (BeginsWith(name.Data(), fileName_)) {
    *size_ = kBlockHead + 1 + name.size;
    done = true;
  }
  if (name.size == 0) return kOk;
  return done ? CountChain(source, size_) : SkipChain(source);
}

class AllBlobsMeter : public PassesCommentsAndImages {
 public:
  explicit AllBlobsMeter(const RecordToWrite& record) : names_(record) {}

  Status OnApplication(ByteSource& source);
  const BlobSizes& Sizes() const { return sizes_; }

 private:
  KeptNames names_;
  BlobSizes sizes_;
};

Status AllBlobsMeter::OnApplication(ByteSource& source) {
  GifSubBlock identifier, name;
  if (!ReadSubBlock(source, &identifier)) return kMalformed;
  if (identifier.size == 0) return kOk;
  if (!BeginsWith(identifier.Data(), kBlobMark)) return SkipChain(source);
  const uint64_t start = source.Position();
  const bool isNamed = ReadSubBlock(source, &name);
  uint32_t size = kBlockHead;
  const Status s = source.Back(source.Position() - start) ? CountChain(source, &size) : kBadStream;
  sizes_.all += size;
  if (isNamed) sizes_.kept += uint64_t{size} * names_.TakeFound(name.Data());
  return s;
}

Status SkipBytes(ByteSource& source, uint32_t n) {
  if (n > source.Remaining()) return kMalformed;
  return source.Skip(n) ? kOk : kBadStream;
}

// Copies the data of a blob without the sizes of its sub-blocks, or only adds up their length if
// data is null. *length is right even after a failure.
Status CopyChain(ByteSource& source, OutputBuffer* data, uint32_t* length) {
  uint8_t size;
  if (!source.ReadByte(&size)) return kMalformed;
  while (size != 0) {
    const Status s = data == nullptr ? SkipBytes(source, size) : CopyBytes(source, size, *data);
    if (s != kOk) return s;
    *length += size;
    if (!source.ReadByte(&size)) return kMalformed;
  }
  return kOk;
}

class BlobCopier : public PassesCommentsAndImages {
 public:
  BlobCopier(const WantedBlob& wanted, OutputBuffer* data, uint32_t* dataLength)
      : wanted_(wanted), data_(data), dataLength_(dataLength) {}

  Status OnApplication(ByteSource& source);

 private:
  const WantedBlob wanted_;
  OutputBuffer* const data_;
  uint32_t* const dataLength_;
};

Status BlobCopier::OnApplication(ByteSource& source) {
  uint8_t size;
  if (!source.ReadByte(&size)) return kMalformed;
  // The whole wanted label is compared, whatever the size of the identifier.
  const uint64_t start = source.Position();
  bool matches;
  if (!source.Compare(wanted_.label, &matches)) return kMalformed;
  if (!source.Back(source.Position() - start)) return kBadStream;
  if (!matches || size == 0) return SkipChain(source, size);
  if (!source.Skip(size)) return kBadStream;
  GifSubBlock name;
  if (!ReadSubBlock(source, &name)) return kMalformed;
  done = BeginsWith(name.Data(), wanted_.name);
  if (name.size == 0) return kOk;
  return done ? CopyChain(source, data_, dataLength_) : SkipChain(source);
}

}  // namespace

Status CopyBlobFromGif(ByteSource& source, const WantedBlob& wanted, OutputBuffer* data,
                       uint32_t* dataLength) {
  *dataLength = 0;
  if (wanted.label.size() > kMaxWanted || wanted.name.size() > kMaxWanted) return kBadArgument;
  GifScreen screen;
  if (Status s = ReadScreen(source, &screen); s != kOk) return s;
  if (!IsEmojiSized(screen)) return kDimensions;
  BlobCopier copier(wanted, data, dataLength);
  if (Status s = WalkGifBlocks(source, screen, copier); s != kOk) return s;
  return copier.done ? kOk : kNoBlob;
}

Status CopyFoundBlobFromGif(ByteSource& source, const FoundBlob& blob, OutputBuffer& data) {
  uint32_t length = 0;
  if (!source.MoveTo(blob.position)) return kBadStream;
  return blob.size == 0 ? kOk : CopyChain(source, &data, &length);
}

BlobSizes MeasureBlobsInGif(ByteSource& source, const RecordToWrite& record) {
  AllBlobsMeter meter(record);
  GifScreen screen;
  if (ReadScreen(source, &screen) == kOk) (void)WalkGifBlocks(source, screen, meter);
  return meter.Sizes();
}

}  // namespace lumigram

using namespace lumigram;

int32_t GetSizeApplicationExtensionFromGif(FILE* stream, uint32_t* size, const char* fileName) {
  if (stream == nullptr || size == nullptr) return kBadArgument;
  *size = 0;
  const std::string_view name = fileName == nullptr ? std::string_view() : fileName;
  if (name.size() > kMaxWanted) return kBadArgument;
  ByteSource source(stream);
  GifScreen screen;
  if (Status s = ReadScreen(source, &screen); s != kOk) return s;
  BlobMeter meter(name, size);
  if (Status s = WalkGifBlocks(source, screen, meter); s != kOk) return s;
  return source.Rewind() ? kOk : kBadStream;
}

int32_t GetApplicationExtensionDataFromGif(FILE* stream, uint8_t* data, uint32_t* dataLength,
                                           const char* label, const char* fileName) {
  if (stream == nullptr || data == nullptr || dataLength == nullptr || label == nullptr ||
      fileName == nullptr) {
    return kBadArgument;
  }
  ByteSource source(stream);
  OutputBuffer room(data, UINT32_MAX);  // The caller promises that data holds the blob.
  const Status s = CopyBlobFromGif(source, {label, fileName}, &room, dataLength);
  return s == kNoBlob ? kOk : s;
}
