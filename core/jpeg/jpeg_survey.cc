// Finds the documents of a JPEG picture, and its end.
#include "core/base/bytes.h"
#include "core/document/document_format.h"
#include "core/jpeg/jpeg_format.h"

namespace lumigram {
namespace {

Status SurveySegment(ByteSource& source, const Marker& marker, Survey* survey) {
  uint8_t root[sizeof(kRootStart) - 1];
  uint16_t length;
  if (!source.ReadBe16(&length) || length < kSegmentLengthSize) return kMalformed;
  const uint64_t end = source.Position() + length - kSegmentLengthSize;
  if (marker.code == kComment && source.Position() + sizeof(root) <= end) {
    if (!source.Read(root)) return kMalformed;
    if (BeginsWith(root, kRootStart)) survey->CountDocument(false);
  }
  return source.Skip(end - source.Position()) ? kOk : kBadStream;
}

}  // namespace

Status SurveyJpeg(ByteSource& source, Survey* survey, const BlobVisitor&) {
  if (!source.Measure()) return kBadStream;
  Marker marker;
  if (Status s = ReadFirstMarker(source, &marker); s != kOk) return s;
  while (marker.code != kEndOfImage) {
    if (Status s = SurveySegment(source, marker, survey); s != kOk) return s;
    if (marker.code == kStartOfScan) {
      if (!source.SkipPast(kMarkerPrefix, kEndOfImage)) return kMalformed;
      break;
    }
    if (Status s = ReadNextMarker(source, &marker); s != kOk) return s;
  }
  survey->end = source.Position();
  return kOk;
}

}  // namespace lumigram
