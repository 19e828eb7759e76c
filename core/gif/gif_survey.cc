// Finds the documents and blobs of a GIF picture, and its end.
#include "core/document/document_format.h"
#include "core/gif/gif_blobs.h"
#include "core/gif/gif_format.h"

namespace lumigram {
namespace {

class Surveyor {
 public:
  const bool done = false;

  Surveyor(Survey* survey, const BlobVisitor& visit) : survey_(*survey), visit_(visit) {}

  // As for the reader, a document may begin in any sub-block of a comment.
  Status OnComment(ByteSource& source) {
    bool isDocument = false;
    GifSubBlock block;
    do {
      if (!ReadSubBlock(source, &block)) return kMalformed;
      isDocument = isDocument || BeginsWith(block.Data(), kRootStart);
    } while (block.size != 0);
    if (isDocument) survey_.CountDocument(imageFound_);
    return kOk;
  }

  Status OnApplication(ByteSource& source) {
    GifSubBlock identifier, name, data;
    if (!ReadSubBlock(source, &identifier)) return kMalformed;
    if (identifier.size == 0) return kOk;
    if (!BeginsWith(identifier.Data(), kBlobMark)) return SkipChain(source);
    if (!ReadSubBlock(source, &name)) return kMalformed;
    FoundBlob blob = {identifier.Data(), name.Data(), source.Position(), 0};
    for (data.size = name.size; data.size != 0; blob.size += data.size) {
      if (!ReadSubBlock(source, &data)) return kMalformed;
    }
    visit_(blob);
    return kOk;
  }

  Status OnImage(const GifImage&) {
    imageFound_ = true;
    return kOk;
  }

 private:
  Survey& survey_;
  const BlobVisitor visit_;
  bool imageFound_ = false;
};

}  // namespace

Status SurveyGif(ByteSource& source, Survey* survey, const BlobVisitor& visit) {
  GifScreen screen;
  if (!source.Measure()) return kBadStream;
  if (!source.Read(screen.bytes)) return kMalformed;
  Surveyor surveyor(survey, visit);
  if (Status s = WalkGifBlocks(source, screen, surveyor); s != kOk) return s;
  survey->end = source.Position();
  return kOk;
}

}  // namespace lumigram
