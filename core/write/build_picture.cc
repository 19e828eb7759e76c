#include "core/write/build_picture.h"

#include <algorithm>

#include "core/document/new_blob.h"
#include "core/file/blobs.h"
#include "core/gif/gif_writer.h"
#include "core/jpeg/jpeg_writer.h"
#include "core/png/png_writer.h"

namespace lumigram {
namespace {

// A picture with a larger estimate is refused before it is built.
constexpr uint32_t kMaxEstimate = kLumigramMaxPictureBytes + 10258;

// The largest allocation: enough to find out that a picture is over its limit.
constexpr uint64_t kMaxCapacity = uint64_t{2} * kLumigramMaxPictureBytes;

// The most that a container adds to a document and to a new blob: a PNG adds these bytes, a GIF
// fewer, and one size byte for each sub-block of up to 255 bytes (InSubBlocks).
constexpr uint64_t kDocumentOverhead = 18;
constexpr uint64_t kBlobOverhead = 31;

uint64_t InSubBlocks(uint64_t size) { return size + (size + 254) / 255; }

// The size of the new picture. The estimate is for the limit test, which cuts it to 32 bits: it
// counts only those old blobs that entries keep, and is too small for small new blobs in a PNG
// picture. The bound is never too small; it is the size of the allocation.
struct Sizes {
  int64_t estimate;
  uint64_t bound;
};

Status AddNewBlob(const RecordToWrite& record, size_t entry, Sizes* sizes) {
  const int32_t size = NewBlob(record, entry).Size();
  if (size <= 0) return kBadBlob;
  const size_t nameSize = TextOf(record.attr.appExt[entry].fileName).size();
  sizes->estimate += int64_t{size} + 17 + size / 255 + static_cast<int64_t>(nameSize);
  sizes->bound += InSubBlocks(static_cast<uint64_t>(size)) + kBlobOverhead + nameSize;
  return kOk;
}

// A walk that fails stops counting; the writer finds the same fault.
Status AddBlobs(ByteSource& source, const BlobFunctions& functions, const RecordToWrite& record,
                Sizes* sizes) {
  const BlobSizes blobs = functions.measure(source, record);
  sizes->estimate += static_cast<int64_t>(blobs.kept) - static_cast<int64_t>(blobs.all);
  for (size_t i = 0; i < std::size(record.attr.appExt); ++i) {
    if (!record.IsNew(i)) continue;
    if (Status s = AddNewBlob(record, i, sizes); s != kOk) return s;
  }
  return kOk;
}

Status MeasurePicture(ByteSource& source, Kind kind, const XmlStringInfo& document,
                      const RecordToWrite& record, Sizes* sizes) {
  if (!source.Measure() || !source.Back(source.Position()) || source.Remaining() == 0)
    return kBadStream;
  const uint64_t length = source.Remaining();
  const uint64_t documentSize = static_cast<uint64_t>(std::max(document.length, 0));
  sizes->estimate = static_cast<int64_t>(length);
  sizes->bound = length + InSubBlocks(documentSize) + kDocumentOverhead;
  if (const BlobFunctions* const functions = BlobFunctionsOf(kind); functions != nullptr) {
    if (Status s = AddBlobs(source, *functions, record, sizes); s != kOk) return s;
  }
  // In 32 bits the estimate wraps when a source claims more blobs than it holds, or when new
  // blobs exceed 4 GiB. If it is then within the limit, the writer finds the fault and returns
  // its status.
  return static_cast<uint32_t>(sizes->estimate) > kMaxEstimate ? kNoRoom : kOk;
}

Status RunWriter(ByteSource& source, Kind kind, const XmlStringInfo& document,
                 const RecordToWrite& record, OutputBuffer& out) {
  switch (kind) {
    case Kind::kGif:
      return SetXmlStringToGif(source, document, record, out);
    case Kind::kPng:
      return SetXmlStringToPng(source, document, record, out);
    case Kind::kJpeg:
      return SetXmlStringToJpg(source, document, out);
  }
  return kBadArgument;
}

// The source must be measured.
Status FillPicture(ByteSource& source, Kind kind, const XmlStringInfo& document,
                   const RecordToWrite& record, OutputBuffer& picture) {
  if (!source.Back(source.Position())) return kBadStream;
  if (Status s = RunWriter(source, kind, document, record, picture); s != kOk) return s;
  return picture.Size() > kLumigramMaxPictureBytes ? kPictureTooLarge : kOk;
}

}  // namespace

Status BuildPicture(ByteSource& source, Kind kind, const XmlStringInfo& document,
                    const RecordToWrite& record, NewPicture* picture) {
  Sizes sizes;
  if (Status s = MeasurePicture(source, kind, document, record, &sizes); s != kOk) return s;
  const uint32_t capacity = static_cast<uint32_t>(std::min(sizes.bound, kMaxCapacity));
  picture->bytes.reset(static_cast<uint8_t*>(malloc(capacity)));
  if (picture->bytes == nullptr) return kNoRoom;
  OutputBuffer room(picture->bytes.get(), capacity);
  const Status status = FillPicture(source, kind, document, record, room);
  picture->length = status == kOk ? room.Size() : 0;
  return status;
}

Status BuildPicture(ByteSource& source, Kind kind, const XmlStringInfo& document,
                    const RecordToWrite& record, OutputBuffer& picture) {
  Sizes sizes;
  if (Status s = MeasurePicture(source, kind, document, record, &sizes); s != kOk) return s;
  return FillPicture(source, kind, document, record, picture);
}

}  // namespace lumigram
