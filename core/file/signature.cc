#include "core/file/signature.h"

#include <string_view>

#include "core/base/bytes.h"
#include "core/base/status.h"
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

using namespace lumigram;

int32_t GetFileTypeFromBytes(const uint8_t* bytes, size_t size, FileType* outType) {
  if (outType == nullptr || (bytes == nullptr && size > 0)) return kBadArgument;
  const std::optional<Kind> kind = KindFromSignature({bytes, size});
  *outType = kind ? static_cast<FileType>(*kind) : FileType{kFileTypeUnknown};
  return kind ? kOk : kUnsupported;
}
