#include "core/file/picture_record.h"

#include <string.h>

#include <algorithm>

#include "core/document/blob_entries.h"
#include "core/document/document_record.h"
#include "core/file/extraction.h"

namespace lumigram {
namespace {

// Counts the blobs that a rewrite with the record does not keep.
class UnnamedBlobs {
 public:
  explicit UnnamedBlobs(const AttrInfo& attr) : kept_(attr) {}

  BlobVisitor Visitor() {
    return {
        [](void* self, const FoundBlob& blob) { static_cast<UnnamedBlobs*>(self)->Visit(blob); },
        this};
  }
  uint32_t Count() const { return count_; }

 private:
  void Visit(const FoundBlob& blob) { count_ += !kept_.Keep(blob.name); }

  const KeptNames kept_;
  uint32_t count_ = 0;
};

Status SurveyRest(ByteSource& source, Kind kind, const AttrInfo& attr, PictureSummary* summary) {
  Survey survey;
  UnnamedBlobs unnamed(attr);
  if (Status s = SurveyPicture(source, kind, &survey, unnamed.Visitor()); s != kOk) return s;
  const uint32_t blobs = unnamed.Count() + survey.brokenBlobs + survey.foreignBlobs;
  summary->unnamedBlobs = static_cast<int32_t>(blobs);
  summary->furtherDocuments = static_cast<int32_t>(survey.documents - (survey.documents > 0));
  summary->bytesAfterEnd = summary->size - static_cast<int32_t>(survey.end);
  return kOk;
}

// A document ends at its first NUL. Bytes after it in the buffer count as stray text.
void FillFromBuffer(const char (&buffer)[kLumigramDocumentBufferBytes], AttrInfo* attr,
                    PictureSummary* summary) {
  const std::string_view document = buffer;
  const auto isByte = [](char c) { return c != '\0'; };
  if (std::any_of(buffer + document.size(), std::end(buffer), isByte)) ++summary->strayTexts;
  FillRecord(document, attr, summary);
}

}  // namespace

Status ReadPictureRecord(ByteSource& source, Kind kind, AttrInfo* attr, PictureSummary* summary,
                         Fingerprint* fingerprint) {
  char document[kLumigramDocumentBufferBytes] = {};
  memset(attr, 0, sizeof *attr);
  memset(summary, 0, sizeof *summary);
  summary->fileType = static_cast<FileType>(kind);
  if (!source.Measure() || !source.Back(source.Position())) return kBadStream;
  summary->size = static_cast<int32_t>(source.Remaining());
  const Status status = ExtractDocument(
      source, kind, {document, &summary->height, &summary->width, &summary->pop, fingerprint});
  if (status != kOk && status != kNoDocument) return status;
  if (status == kOk) {
    summary->hasDocument = 1;
    FillFromBuffer(document, attr, summary);
  }
  return SurveyRest(source, kind, *attr, summary);
}

}  // namespace lumigram

using namespace lumigram;

int32_t GetPictureRecord(FILE* stream, FileType type, AttrInfo* attr, PictureSummary* summary) {
  if (stream == nullptr || attr == nullptr || summary == nullptr) return kBadArgument;
  const std::optional<Kind> kind = KindOf(type);
  if (!kind) return kBadArgument;
  int32_t size = 0;
  if (!IsPictureSized(stream, &size)) return kBadArgument;
  ByteSource source(stream);
  return ReadPictureRecord(source, *kind, attr, summary, nullptr);
}

int32_t GetPictureRecordFromBytes(const uint8_t* bytes, size_t size, FileType type, AttrInfo* attr,
                                  PictureSummary* summary) {
  if (attr == nullptr || summary == nullptr || !IsPictureSized(bytes, size)) return kBadArgument;
  const std::optional<Kind> kind = KindOf(type);
  if (!kind) return kBadArgument;
  ByteSource source({bytes, size});
  return ReadPictureRecord(source, *kind, attr, summary, nullptr);
}
