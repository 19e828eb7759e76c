#include "core/gif/gif_writer.h"

#include <string_view>

#include "core/document/document_format.h"
#include "core/gif/gif_format.h"

namespace lumigram {
namespace {

// Copies a picture block by block, up to its trailer. What is not metadata of ours passes through
// as it is, also what a reader would not understand. Nothing enters the output before its fate is
// known.
class PictureCopier {
 public:
  PictureCopier(ByteSource& source, const XmlStringInfo& doc, const AttrInfo& attr, uint8_t* out,
                uint32_t capacity);

  Status Copy(uint32_t* outLength);

 private:
  Status CopyScreen();
  Status CopyBlock(uint8_t introducer);
  Status CopyExtension();
  Status CopyComment();
  Status CopyApplication();
  Status CopyBlob(const GifSubBlock& identifier);
  Status CopyImage();
  // The rest of an extension, from its first sub-block or behind it.
  Status CopyChain();
  Status CopyChain(const GifSubBlock& first);

  bool PutHead(uint8_t label);
  Status PlaceDocument();
  bool IsWanted(std::string_view blobName) const;

  ByteSource& source_;
  const XmlStringInfo& doc_;
  const AttrInfo& attr_;
  uint8_t* const data_;
  const uint32_t capacity_;
  OutputBuffer out_;
  bool placed_;  // the new document, or there is none to be placed
  // The blobs that stay in the picture. Looked up here, not in the record: a picture can hold
  // hundreds of thousands of blobs.
  std::string_view keptNames_[kLumigramMaxTags];
  uint32_t keptCount_ = 0;
};

PictureCopier::PictureCopier(ByteSource& source, const XmlStringInfo& doc, const AttrInfo& attr,
                             uint8_t* out, uint32_t capacity)
    : source_(source),
      doc_(doc),
      attr_(attr),
      data_(out),
      capacity_(capacity),
      out_(out, capacity),
      placed_(doc.length <= 0) {
  for (const AppExtEntry& entry : attr.appExt) {
    if (IsKept(entry)) keptNames_[keptCount_++] = TextOf(entry.fileName);
  }
}

Status PictureCopier::Copy(uint32_t* outLength) {
  if (Status s = CopyScreen(); s != kOk) return s;
  uint8_t introducer;
  do {
    if (!source_.ReadByte(&introducer)) return kMalformed;
    if (Status s = CopyBlock(introducer); s != kOk) return s;
  } while (introducer != kGifTrailer);
  *outLength = out_.Size();
  return kOk;
}

Status PictureCopier::CopyScreen() {
  GifScreen screen;
  if (!source_.Read(screen.bytes)) return kMalformed;
  if (!out_.Put(screen.bytes)) return kNoRoom;
  return CopyBytes(source_, GetSizeColorTable(screen.Packed()), out_);
}

Status PictureCopier::CopyBlock(uint8_t introducer) {
  switch (introducer) {
    case kGifExtension:
      return CopyExtension();
    case kGifImage:
      return CopyImage();
    default:
      return out_.PutByte(introducer) ? kOk : kNoRoom;
  }
}

Status PictureCopier::CopyExtension() {
  uint8_t label;
  if (!source_.ReadByte(&label)) return kMalformed;
  switch (label) {
    case kGifComment:
      return CopyComment();
    case kGifApplication:
      return CopyApplication();
    default:
      return PutHead(label) ? CopyChain() : kNoRoom;
  }
}

// An old document is one by its first sub-block. It makes place for the new one.
Status PictureCopier::CopyComment() {
  GifSubBlock first;
  if (!ReadSubBlock(source_, &first)) return kMalformed;
  if (BeginsWith(first.Data(), kRootStart)) {
    if (Status s = SkipChain(source_); s != kOk) return s;
    return placed_ ? kOk : PlaceDocument();
  }
  if (!source_.Back(1u + first.size)) return kCannotGoBack;
  return PutHead(kGifComment) ? CopyChain() : kNoRoom;
}

Status PictureCopier::CopyApplication() {
  GifSubBlock identifier;
  if (!source_.ReadByte(&identifier.size)) return kMalformed;
  if (identifier.size > source_.Remaining()) return kBadBlob;
  if (!source_.Read({identifier.bytes, identifier.size})) return kMalformed;
  if (BeginsWith(identifier.Data(), kBlobMark)) return CopyBlob(identifier);
  return PutHead(kGifApplication) ? CopyChain(identifier) : kNoRoom;
}

Status PictureCopier::CopyBlob(const GifSubBlock& identifier) {
  GifSubBlock name;
  if (!ReadSubBlock(source_, &name)) return kMalformed;
  if (!IsWanted(name.Data())) return name.size == 0 ? kOk : SkipChain(source_);
  if (!PutHead(kGifApplication) || !PutSubBlock(out_, identifier.Data())) return kNoRoom;
  return CopyChain(name);
}

Status PictureCopier::CopyImage() {
  if (!placed_) {
    if (Status s = PlaceDocument(); s != kOk) return s;
  }
  GifImage image;
  if (!source_.Read(image.bytes)) return kMalformed;
  if (!out_.PutByte(kGifImage) || !out_.Put(image.bytes)) return kNoRoom;
  // The colour table and the byte that tells the code size.
  if (Status s = CopyBytes(source_, GetSizeColorTable(image.Packed()) + 1, out_); s != kOk)
    return s;
  return CopyChain();
}

Status PictureCopier::CopyChain() {
  uint8_t size;
  do {
    if (!source_.ReadByte(&size)) return kMalformed;
    if (!out_.PutByte(size)) return kNoRoom;
    if (Status s = CopyBytes(source_, size, out_); s != kOk) return s;
  } while (size != 0);
  return kOk;
}

Status PictureCopier::CopyChain(const GifSubBlock& first) {
  if (!PutSubBlock(out_, first.Data())) return kNoRoom;
  return first.size == 0 ? kOk : CopyChain();
}

bool PictureCopier::PutHead(uint8_t label) {
  return out_.PutByte(kGifExtension) && out_.PutByte(label);
}

Status PictureCopier::PlaceDocument() {
  placed_ = true;
  if (!PutHead(kGifComment)) return kNoRoom;
  uint32_t end = out_.Size();
  if (Status s = SetMetadataBlocksToGif(&doc_, &end, data_, &attr_, capacity_); s != kOk) return s;
  (void)out_.Claim(end - out_.Size());  // they stand in the buffer already
  return kOk;
}

bool PictureCopier::IsWanted(std::string_view blobName) const {
  for (uint32_t i = 0; i < keptCount_; ++i) {
    if (BeginsWith(blobName, keptNames_[i])) return true;
  }
  return false;
}

}  // namespace

Status SetXmlStringToGif(ByteSource& source, const XmlStringInfo* doc, uint8_t* out,
                         uint32_t* outLength, const AttrInfo* attr, uint32_t outCapacity) {
  if (doc == nullptr || out == nullptr || outLength == nullptr || attr == nullptr)
    return kBadArgument;
  return PictureCopier(source, *doc, *attr, out, outCapacity).Copy(outLength);
}

}  // namespace lumigram
