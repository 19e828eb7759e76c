#include "core/write/build_picture.h"

#include <algorithm>

#include "core/document/document_format.h"
#include "core/file/path.h"
#include "core/gif/gif_blobs.h"
#include "core/gif/gif_writer.h"
#include "core/jpeg/jpeg_writer.h"
#include "core/png/png_blobs.h"
#include "core/png/png_writer.h"

namespace lumigram {
namespace {

// A picture that is estimated to come out larger, with its document, is refused before it is built.
constexpr uint32_t kMaxEstimate = kLumigramMaxPictureBytes + 10258;

// Enough to find out that a picture is over its limit; no picture gets more.
constexpr uint64_t kMaxCapacity = 2 * kLumigramMaxPictureBytes;

// The most that a container adds to a document, and to a new blob, besides one size byte for every
// 255 bytes begun: GIF needs those, PNG the rest.
constexpr uint64_t kDocumentOverhead = 18;
constexpr uint64_t kBlobOverhead = 31;

uint64_t InSubBlocks(uint64_t size) { return size + (size + 254) / 255; }

// How much the new picture takes. The estimate serves the limit test: of the old blobs it counts
// those that entries keep, and it is short for small new blobs in a PNG picture. It is exact here
// and cut to 32 bits when it is tested. The bound is never short, and is what is allocated.
struct Sizes {
  int64_t estimate;
  uint64_t bound;
};

Status AddNewBlob(const AppExtEntry& entry, Sizes* sizes) {
  char path[sizeof(entry.binaryDataUri)];
  CopyText(path, TextOf(entry.binaryDataUri));
  const ScopedFile file(OpenForReading(path));
  const int32_t size = GetFileLength(file.get());
  if (size <= 0) return kBadBlob;
  const size_t nameSize = TextOf(entry.fileName).size();
  sizes->estimate += int64_t{size} + 17 + size / 255 + static_cast<int64_t>(nameSize);
  sizes->bound += InSubBlocks(static_cast<uint64_t>(size)) + kBlobOverhead + nameSize;
  return kOk;
}

using BlobMeasure = decltype(&MeasureBlobsInGif);

// A walk that fails stops counting, and the writer will find the same fault.
Status AddBlobs(ByteSource& source, BlobMeasure measure, const AttrInfo& attr, Sizes* sizes) {
  const BlobSizes blobs = measure(source, attr);
  sizes->estimate += static_cast<int64_t>(blobs.kept) - static_cast<int64_t>(blobs.all);
  for (const AppExtEntry& entry : attr.appExt) {
    if (!IsNew(entry)) continue;
    if (Status s = AddNewBlob(entry, sizes); s != kOk) return s;
  }
  return kOk;
}

Status MeasurePicture(ByteSource& source, FileType fileType, const XmlStringInfo& document,
                      const AttrInfo& attr, Sizes* sizes) {
  const uint64_t length = source.Remaining();
  const uint64_t documentSize = static_cast<uint64_t>(std::max(document.length, 0));
  sizes->estimate = static_cast<int64_t>(length);
  sizes->bound = length + InSubBlocks(documentSize) + kDocumentOverhead;
  switch (fileType) {
    case kFileTypeGif:
      return AddBlobs(source, MeasureBlobsInGif, attr, sizes);
    case kFileTypePng:
      return AddBlobs(source, MeasureBlobsInPng, attr, sizes);
    default:
      return kOk;
  }
}

Status RunWriter(ByteSource& source, FileType fileType, const XmlStringInfo& document,
                 const AttrInfo& attr, uint32_t capacity, NewPicture* picture) {
  uint8_t* const out = picture->bytes.get();
  uint32_t* const length = &picture->length;
  switch (fileType) {
    case kFileTypeGif:
      return SetXmlStringToGif(source, &document, out, length, &attr, capacity);
    case kFileTypePng:
      return SetXmlStringToPng(source, &document, out, length, &attr, capacity);
    default:
      return SetXmlStringToJpg(source, &document, out, length, capacity);
  }
}

}  // namespace

Status BuildPicture(ByteSource& source, FileType fileType, const XmlStringInfo& document,
                    const AttrInfo& attr, NewPicture* picture) {
  if (fileType < kFileTypeGif || fileType > kFileTypePng) return kBadArgument;
  if (!source.Measure() || !source.Back(source.Position()) || source.Remaining() == 0)
    return kBadStream;
  Sizes sizes;
  if (Status s = MeasurePicture(source, fileType, document, attr, &sizes); s != kOk) return s;
  // In 32 bits the estimate wraps when a source claims more blobs than it holds, or when new blobs
  // exceed 4 GiB. If it is then within the limit, the writer finds the fault and names it.
  if (static_cast<uint32_t>(sizes.estimate) > kMaxEstimate) return kNoRoom;
  const uint32_t capacity = static_cast<uint32_t>(std::min(sizes.bound, kMaxCapacity));
  picture->bytes.reset(static_cast<uint8_t*>(malloc(capacity)));
  if (picture->bytes == nullptr) return kNoRoom;
  if (!source.Back(source.Position())) return kBadStream;
  if (Status s = RunWriter(source, fileType, document, attr, capacity, picture); s != kOk) return s;
  return picture->length > kLumigramMaxPictureBytes ? kPictureTooLarge : kOk;
}

}  // namespace lumigram
