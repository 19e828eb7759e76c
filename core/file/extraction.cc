#include "core/file/extraction.h"

#include <unistd.h>

#include "core/gif/gif_format.h"
#include "core/jpeg/jpeg_format.h"
#include "core/png/png_format.h"

namespace lumigram {
namespace {

struct Readers {
  Status (*readDocument)(ByteSource& source, const ReaderOutputs& out);
  Status (*survey)(ByteSource& source, Survey* survey, const BlobVisitor& visit);
};

// Null for an unknown kind.
const Readers* ReadersOf(Kind kind) {
  static constexpr Readers kGif = {ReadGifDocument, SurveyGif};
  static constexpr Readers kJpeg = {ReadJpegDocument, SurveyJpeg};
  static constexpr Readers kPng = {ReadPngDocument, SurveyPng};
  switch (kind) {
    case Kind::kGif:
      return &kGif;
    case Kind::kJpeg:
      return &kJpeg;
    case Kind::kPng:
      return &kPng;
  }
  return nullptr;
}

}  // namespace

bool IsPictureSized(FILE* stream, int32_t* size) {
  return CommonGetFileSize(stream, size) == kOk && *size <= kLumigramMaxPictureBytes;
}

bool IsPictureSized(const uint8_t* bytes, size_t size) {
  return size <= kLumigramMaxPictureBytes && (bytes != nullptr || size == 0);
}

Status ExtractDocument(ByteSource& source, Kind kind, const ReaderOutputs& out) {
  const Readers* const readers = ReadersOf(kind);
  if (readers == nullptr) return kBadArgument;
  if (Status s = readers->readDocument(source, out); s != kOk) return s;
  if (out.fingerprint != nullptr) {
    out.fingerprint->Add(out.document);
    out.fingerprint->EndPart();
  }
  return out.document[0] == '\0' ? kNoDocument : kOk;
}

Status SurveyPicture(ByteSource& source, Kind kind, Survey* survey, const BlobVisitor& visit) {
  const Readers* const readers = ReadersOf(kind);
  if (readers == nullptr) return kBadArgument;
  if (!source.Measure() || !source.Back(source.Position())) return kBadStream;
  return readers->survey(source, survey, visit);
}

}  // namespace lumigram

using namespace lumigram;

int32_t GetXmlString(FILE* stream, FileType type, char* xmlBuf, int32_t* height, int32_t* width,
                     int32_t* pop) {
  if (stream == nullptr || xmlBuf == nullptr) return kBadArgument;
  const std::optional<Kind> kind = KindOf(type);
  if (!kind) return kBadArgument;
  int32_t size = 0;
  if (!IsPictureSized(stream, &size)) return kBadArgument;
  // Give a program that has just created the file time to write it.
  if (size == 0) sleep(1);
  ByteSource source(stream);
  return ExtractDocument(source, *kind, {xmlBuf, height, width, pop});
}

int32_t GetXmlStringFromBytes(const uint8_t* bytes, size_t size, FileType type, char* xmlBuf,
                              int32_t* height, int32_t* width, int32_t* pop) {
  const std::optional<Kind> kind = KindOf(type);
  if (!kind || xmlBuf == nullptr || !IsPictureSized(bytes, size)) return kBadArgument;
  ByteSource source({bytes, size});
  return ExtractDocument(source, *kind, {xmlBuf, height, width, pop});
}
