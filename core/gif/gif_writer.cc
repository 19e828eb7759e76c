#include "core/gif/gif_writer.h"

#include <string_view>

#include "core/document/blob_entries.h"
#include "core/document/document_format.h"
#include "core/gif/gif_format.h"

namespace lumigram {
namespace {

// Copies a picture block by block, up to its trailer. Everything but our own metadata is copied
// unchanged, including unknown blocks. Nothing is appended until we know that it will be kept.
class PictureCopier {
 public:
  PictureCopier(ByteSource& source, const XmlStringInfo& doc, const RecordToWrite& record,
                OutputBuffer& out)
      : source_(source),
        doc_(doc),
        record_(record),
        out_(out),
        kept_(record),
        placed_(doc.length <= 0) {}

  Status Copy();

 private:
  Status CopyScreen();
  Status CopyBlock(uint8_t introducer);
  Status CopyExtension();
  Status CopyComment();
  Status CopyApplication();
  Status CopyBlob(const GifSubBlock& identifier);
  Status CopyImage();
  // Copies the rest of an extension: from its first sub-block on, or with the first one already
  // read.
  Status CopyChain();
  Status CopyChain(const GifSubBlock& first);

  bool PutHead(uint8_t label);
  Status PlaceDocument();

  ByteSource& source_;
  const XmlStringInfo& doc_;
  const RecordToWrite& record_;
  OutputBuffer& out_;
  const KeptNames kept_;
  bool placed_;  // the new document has been appended, or there is none
};

Status PictureCopier::Copy() {
  if (Status s = CopyScreen(); s != kOk) return s;
  uint8_t introducer;
  do {
    if (!source_.ReadByte(&introducer)) return kMalformed;
    if (Status s = CopyBlock(introducer); s != kOk) return s;
  } while (introducer != kGifTrailer);
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

// The first sub-block decides whether a comment is an old document. Old documents are dropped. The
// new document, unless it is placed already, replaces the first of them.
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
  if (!kept_.Keep(name.Data())) return name.size == 0 ? kOk : SkipChain(source_);
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
  // The colour table and the byte with the code size.
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
  return PutHead(kGifComment) ? SetMetadataBlocksToGif(doc_, record_, out_) : kNoRoom;
}

}  // namespace

Status SetXmlStringToGif(ByteSource& source, const XmlStringInfo& doc, const RecordToWrite& record,
                         OutputBuffer& out) {
  return PictureCopier(source, doc, record, out).Copy();
}

}  // namespace lumigram
