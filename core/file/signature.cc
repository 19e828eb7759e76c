#include "core/file/signature.h"

#include <string_view>

#include "core/base/bytes.h"
#include "core/gif/gif_format.h"
#include "core/png/png_format.h"

namespace lumigram {
namespace {

struct Signature {
  std::string_view text;
  Kind kind;
};

// A JPEG picture begins with a start of image and the prefix of the next marker.
constexpr Signature kSignatures[] = {{kGif87Signature, Kind::kGif},
                                     {kGif89Signature, Kind::kGif},
                                     {"\xFF\xD8\xFF", Kind::kJpeg},
                                     {kPngSignature, Kind::kPng}};

}  // namespace

std::optional<Kind> KindFromSignature(std::span<const uint8_t> bytes) {
  for (const Signature& signature : kSignatures) {
    if (BeginsWith(bytes, signature.text)) return signature.kind;
  }
  return std::nullopt;
}

}  // namespace lumigram
