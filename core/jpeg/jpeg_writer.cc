// Copies a JPEG picture segment by segment, up to its end of image. Everything but documents is
// copied unchanged.
#include "core/jpeg/jpeg_writer.h"

#include <string.h>

#include <algorithm>

#include "core/document/document_format.h"
#include "core/jpeg/jpeg_format.h"

namespace lumigram {
namespace {

constexpr uint32_t kRootSize = sizeof(kRootStart) - 1;

// The state of a copy. documentDue: there is a new document, and it has not been appended yet.
struct Copy {
  ByteSource& source;
  const XmlStringInfo& doc;
  OutputBuffer& out;
  bool documentDue;
};

// Appends the bytes of head, then the next n of the source. The source is checked first, so that a
// truncated picture is never reported as one that does not fit.
Status Append(Copy& copy, std::span<const uint8_t> head, uint32_t n) {
  if (n > copy.source.Remaining()) return kMalformed;
  return copy.out.Put(head) ? CopyBytes(copy.source, n, copy.out) : kNoRoom;
}

Status PutMarker(Copy& copy, Marker marker) {
  const uint8_t bytes[] = {marker.prefix, marker.code};
  return Append(copy, bytes, 0);
}

Status CopySegment(Copy& copy, Marker marker) {
  uint8_t head[] = {marker.prefix, marker.code, 0, 0};
  const std::span<uint8_t> length(head + 2, kSegmentLengthSize);
  if (!copy.source.Read(length)) return kMalformed;
  const uint32_t size = LoadBe16(length.data());
  return size < kSegmentLengthSize ? kMalformed : Append(copy, head, size - kSegmentLengthSize);
}

Status PutDocument(Copy& copy, uint8_t prefix) {
  copy.documentDue = false;
  if (Status s = PutMarker(copy, {prefix, kComment}); s != kOk) return s;
  return SetCommentSegmentToJpg(copy.doc, copy.out);
}

// Old documents are dropped. The new document, if there is one, replaces the first of them.
Status CopyComment(Copy& copy, Marker marker) {
  ByteSource& source = copy.source;
  uint16_t length;
  if (!source.ReadBe16(&length)) return kMalformed;
  // CopySegment() refuses a length that does not count itself.
  const uint32_t size = length < kSegmentLengthSize ? 0 : length - kSegmentLengthSize;
  uint32_t taken = kSegmentLengthSize;
  bool isDocument = false;
  if (size >= kRootSize && size < source.Remaining()) {
    uint8_t root[kRootSize];
    if (!source.Read(root)) return kMalformed;
    taken += kRootSize;
    isDocument = BeginsWith(root, kRootStart);
  }
  if (!isDocument) return source.Back(taken) ? CopySegment(copy, marker) : kCannotGoBack;
  if (!source.Skip(size - kRootSize)) return kBadStream;
  return copy.documentDue ? PutDocument(copy, marker.prefix) : kOk;
}

// The number of bytes up to and including the first end of image; 0 without one.
size_t SizeUpToEndOfImage(std::span<const uint8_t> bytes) {
  for (size_t at = 0; at + 1 < bytes.size(); ++at) {
    const void* hit = memchr(bytes.data() + at, kMarkerPrefix, bytes.size() - 1 - at);
    if (hit == nullptr) return 0;
    at = static_cast<size_t>(static_cast<const uint8_t*>(hit) - bytes.data());
    if (bytes[at + 1] == kEndOfImage) return at + 2;
  }
  return 0;
}

// The image data end with the first end of image. The source is read directly into the output, as
// far as there is room, and searched there. Only the image data must fit.
Status CopyImageData(Copy& copy) {
  ByteSource& source = copy.source;
  const std::span<uint8_t> room = copy.out.Room();
  const size_t read = static_cast<size_t>(std::min<uint64_t>(room.size(), source.Remaining()));
  const std::span<uint8_t> bytes = room.first(read);
  if (!source.Read(bytes)) return kMalformed;
  if (const size_t size = SizeUpToEndOfImage(bytes); size > 0) {
    copy.out.KeepFirst(size);
    return source.Back(read - size) ? kOk : kBadStream;
  }
  const bool isSplit = read > 0 && bytes[read - 1] == kMarkerPrefix;
  if (isSplit && !source.Back(1)) return kBadStream;
  return source.SkipPast(kMarkerPrefix, kEndOfImage) ? kNoRoom : kMalformed;
}

Status CopyScan(Copy& copy, Marker marker) {
  if (copy.documentDue) {
    if (Status s = PutDocument(copy, marker.prefix); s != kOk) return s;
    marker.prefix = kMarkerPrefix;
  }
  if (Status s = CopySegment(copy, marker); s != kOk) return s;
  return CopyImageData(copy);
}

Status CopyPicture(Copy& copy) {
  Marker marker;
  if (Status s = ReadFirstMarker(copy.source, &marker); s != kOk) return s;
  if (Status s = PutMarker(copy, {kMarkerPrefix, kStartOfImage}); s != kOk) return s;
  while (marker.code != kEndOfImage) {
    if (marker.code == kStartOfScan) return CopyScan(copy, marker);
    const bool isComment = marker.code == kComment;
    Status s = isComment ? CopyComment(copy, marker) : CopySegment(copy, marker);
    if (s != kOk) return s;
    if (s = ReadNextMarker(copy.source, &marker); s != kOk) return s;
  }
  return PutMarker(copy, marker);
}

}  // namespace

Status SetXmlStringToJpg(ByteSource& source, const XmlStringInfo& doc, OutputBuffer& out) {
  Copy copy{source, doc, out, doc.length > 0};
  return CopyPicture(copy);
}

Status SetCommentSegmentToJpg(const XmlStringInfo& doc, OutputBuffer& out) {
  if (doc.length > kLumigramMaxDocumentBytes) return kTooLong;
  const uint16_t size = static_cast<uint16_t>(doc.length);
  const uint16_t length = static_cast<uint16_t>(size + kSegmentLengthSize);
  return out.PutBe16(length) && out.Put(std::string_view(doc.text, size)) ? kOk : kNoRoom;
}

}  // namespace lumigram
