#include "core/file/blobs.h"

#include "core/gif/gif_blobs.h"
#include "core/png/png_blobs.h"

namespace lumigram {

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
