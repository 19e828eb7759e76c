#include "cli/layout.h"

#include "cli/files.h"
#include "core/file/blobs.h"
#include "core/file/extraction.h"

namespace lumigram::cli {
namespace {

// A blob whose data have not been copied out of the picture yet.
struct Place {
  Blob blob;
  FoundBlob found;  // without label and name, which were valid only during the visit
};

std::string CopyData(ByteSource& source, Kind kind, const FoundBlob& blob) {
  std::string data(blob.size, '\0');
  OutputBuffer room(reinterpret_cast<uint8_t*>(data.data()), blob.size);
  const BlobFunctions* const functions = BlobFunctionsOf(kind);
  if (functions == nullptr || functions->copyFound(source, blob, room) != kOk) {
    throw Failure(kBadBlob, "a blob's data cannot be read");
  }
  return data;
}

}  // namespace

Layout LayOut(Kind kind, const std::vector<uint8_t>& bytes) {
  std::vector<Place> places;
  const auto collect = [](void* context, const FoundBlob& found) {
    static_cast<std::vector<Place>*>(context)->push_back(
        {{WithoutPadding(found.label), std::string(found.name), ""},
         {{}, {}, found.position, found.size}});
  };
  Layout layout;
  ByteSource source{bytes};
  if (SurveyPicture(source, kind, &layout.survey, {collect, &places}) != kOk) {
    throw Failure(kMalformed, "the structure of this picture is damaged");
  }
  for (Place& place : places) {
    place.blob.bytes = CopyData(source, kind, place.found);
    layout.blobs.push_back(std::move(place.blob));
  }
  return layout;
}

std::string WithoutPadding(std::string_view text) {
  return std::string(text.substr(0, text.find_last_not_of('\0') + 1));
}

}  // namespace lumigram::cli
