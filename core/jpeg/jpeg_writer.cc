// A JPEG picture with a new document: everything else is copied as it is, up to the end of image.
#include "core/jpeg/jpeg_writer.h"

#include <string.h>

#include <algorithm>

#include "core/base/output_buffer.h"
#include "core/document/document_format.h"
#include "core/jpeg/jpeg_format.h"

namespace lumigram {
namespace {

constexpr uint32_t kRootSize = sizeof(kRootStart) - 1;

// A copy under way. documentDue: there is a new document, and it is not written yet.
struct Copy {
  ByteSource& source;
  const XmlStringInfo& doc;
  bool documentDue;
  uint8_t* out;
  uint32_t capacity;
  uint32_t position = 0;
};

// Appends the bytes of head, then the next n of the source, which is asked first.
Status Append(Copy& copy, std::span<const uint8_t> head, uint32_t n) {
  if (n > copy.source.Remaining()) return kMalformed;
  OutputBuffer out(copy.out, copy.capacity, copy.position);
  if (!out.Put(head)) return kNoRoom;
  const Status s = CopyBytes(copy.source, n, out);
  copy.position = out.Size();
  return s;
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
  return SetCommentSegmentToJpg(&copy.doc, &copy.position, copy.out, copy.capacity);
}

// The first document makes room for the new one, if there is one; every other document goes.
Status CopyComment(Copy& copy, Marker marker) {
  ByteSource& source = copy.source;
  uint16_t length;
  if (!source.ReadBe16(&length)) return kMalformed;
  // The copying refuses a length that does not count itself.
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

// How many bytes there are up to the end of the first end of image; 0 without one.
size_t FindEndOfImage(std::span<const uint8_t> bytes) {
  for (size_t at = 0; at + 1 < bytes.size(); ++at) {
    const void* hit = memchr(bytes.data() + at, kMarkerPrefix, bytes.size() - 1 - at);
    if (hit == nullptr) return 0;
    at = static_cast<size_t>(static_cast<const uint8_t*>(hit) - bytes.data());
    if (bytes[at + 1] == kEndOfImage) return at + 2;
  }
  return 0;
}

// The image data end with the first end of image. They are read straight to where they belong, as
// far as there is room, and searched there; room is needed for no more than the data.
Status CopyImageData(Copy& copy) {
  ByteSource& source = copy.source;
  const uint64_t room = copy.capacity - copy.position;
  const size_t read = static_cast<size_t>(std::min(room, source.Remaining()));
  const std::span<uint8_t> bytes(copy.out + copy.position, read);
  if (!source.Read(bytes)) return kMalformed;
  const size_t size = FindEndOfImage(bytes);
  copy.position += static_cast<uint32_t>(size);
  if (size > 0) return source.Back(read - size) ? kOk : kBadStream;
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

Status SetXmlStringToJpg(ByteSource& source, const XmlStringInfo* doc, uint8_t* out,
                         uint32_t* outLength, uint32_t outCapacity) {
  if (doc == nullptr || out == nullptr || outLength == nullptr) {
    return kBadArgument;
  }
  Copy copy{source, *doc, doc->length > 0, out, outCapacity};
  if (Status s = CopyPicture(copy); s != kOk) return s;
  *outLength = copy.position;
  return kOk;
}

Status SetCommentSegmentToJpg(const XmlStringInfo* doc, uint32_t* position, uint8_t* out,
                              uint32_t outCapacity) {
  if (doc == nullptr || position == nullptr || out == nullptr || doc->length < 0) {
    return kBadArgument;
  }
  if (doc->length > kLumigramMaxDocumentBytes) return kTooLong;
  const uint16_t size = static_cast<uint16_t>(doc->length);
  const uint16_t length = static_cast<uint16_t>(size + kSegmentLengthSize);
  OutputBuffer buffer(out, outCapacity, *position);
  if (!buffer.PutBe16(length) || !buffer.Put(std::string_view(doc->text, size))) return kNoRoom;
  *position = buffer.Size();
  return kOk;
}

}  // namespace lumigram
