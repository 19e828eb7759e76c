#include "core/file/blobs.h"

#include <algorithm>

#include "core/file/extraction.h"
#include "core/gif/gif_blobs.h"
#include "core/png/png_blobs.h"

namespace lumigram {
namespace {

struct Callback {
  BlobCallback call;
  void* context;
};

void Report(void* callback, const FoundBlob& found) {
  BlobInfo blob;
  CopyText(blob.labelName, found.label);
  CopyText(blob.fileName, found.name);
  blob.size = found.size;
  const Callback& report = *static_cast<Callback*>(callback);
  report.call(report.context, &blob);
}

Status List(ByteSource& source, Kind kind, Callback callback) {
  Survey survey;
  return SurveyPicture(source, kind, &survey, {Report, &callback});
}

}  // namespace

const BlobFunctions* BlobFunctionsOf(Kind kind) {
  static constexpr BlobFunctions kGif = {MeasureBlobsInGif, CopyBlobFromGif, CopyFoundBlobFromGif};
  static constexpr BlobFunctions kPng = {MeasureBlobsInPng, CopyBlobFromPng, CopyFoundBlobFromPng};
  switch (kind) {
    case Kind::kGif:
      return &kGif;
    case Kind::kPng:
      return &kPng;
    case Kind::kJpeg:
      return nullptr;
  }
  return nullptr;
}

}  // namespace lumigram

using namespace lumigram;

int32_t GetBlobFromBytes(const uint8_t* bytes, size_t size, FileType type, const char* label,
                         const char* fileName, uint8_t* data, size_t capacity, size_t* dataLength) {
  const std::optional<Kind> kind = KindOf(type);
  if (!kind || label == nullptr || fileName == nullptr || dataLength == nullptr ||
      !IsPictureSized(bytes, size)) {
    return kBadArgument;
  }
  *dataLength = 0;
  const BlobFunctions* const functions = BlobFunctionsOf(*kind);
  if (functions == nullptr) return kNoBlob;
  ByteSource source({bytes, size});
  OutputBuffer room(data, static_cast<uint32_t>(std::min<size_t>(capacity, UINT32_MAX)));
  uint32_t length = 0;
  const Status status =
      functions->copy(source, {label, fileName}, data == nullptr ? nullptr : &room, &length);
  *dataLength = length;
  return status;
}

int32_t ListBlobs(FILE* stream, FileType type, BlobCallback callback, void* context) {
  const std::optional<Kind> kind = KindOf(type);
  int32_t size = 0;
  if (!kind || stream == nullptr || callback == nullptr || !IsPictureSized(stream, &size)) {
    return kBadArgument;
  }
  ByteSource source(stream);
  return List(source, *kind, {callback, context});
}

int32_t ListBlobsFromBytes(const uint8_t* bytes, size_t size, FileType type, BlobCallback callback,
                           void* context) {
  const std::optional<Kind> kind = KindOf(type);
  if (!kind || callback == nullptr || !IsPictureSized(bytes, size)) return kBadArgument;
  ByteSource source({bytes, size});
  return List(source, *kind, {callback, context});
}
