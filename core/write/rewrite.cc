#include "core/write/rewrite.h"

#include <errno.h>

#include <algorithm>

#include "core/document/blob_entries.h"
#include "core/document/document_builder.h"
#include "core/file/extraction.h"
#include "core/file/picture_record.h"
#include "core/write/opened_picture.h"

namespace lumigram {
namespace {

constexpr int kTries = 5;

// A picture as it is before the rewrite. The record is too large for the stack of a Java thread.
struct OldPicture {
  ScopedBlock<AttrInfo> attr;
  PictureSummary summary;
  Fingerprint fingerprint;
};

// Texts with bytes that belong to no character are not counted: a read delivers replacements for
// them, which cannot be written.
bool CountUnread(const PictureSummary& summary, int32_t (&unread)[kUnreadKinds]) {
  unread[kRefusedLabels] = summary.refusedLabels;
  unread[kFurtherLabels] = summary.furtherLabels;
  unread[kUnknownParts] = summary.unknownParts;
  unread[kRefusedTags] = summary.refusedTags;
  unread[kDroppedTags] = summary.droppedTags;
  unread[kRefusedTexts] = summary.refusedTexts;
  unread[kStrayTexts] = summary.strayTexts;
  unread[kTextsWithMarkup] = summary.textsWithMarkup;
  unread[kFurtherDocuments] = summary.furtherDocuments;
  unread[kUnnamedBlobs] = summary.unnamedBlobs;
  unread[kBytesAfterEnd] = summary.bytesAfterEnd;
  return std::any_of(std::begin(unread), std::end(unread), [](int32_t n) { return n != 0; });
}

bool RefersTo(const AttrInfo& attr, std::string_view blobName) {
  return std::any_of(std::begin(attr.appExt), std::end(attr.appExt), [&](const AppExtEntry& entry) {
    return IsKept(entry) && TextOf(entry.fileName) == blobName;
  });
}

// The new references of a record to blobs of the picture, each until its blob is found.
class NewReferences {
 public:
  NewReferences(const RecordToWrite& record, const AttrInfo& old) : attr_(record.attr) {
    for (int i = 0; i < kLumigramMaxTags; ++i) {
      const size_t entry = static_cast<size_t>(i);
      isOpen_[i] = record.IsKept(entry) && !RefersTo(old, TextOf(attr_.appExt[i].fileName));
    }
  }

  BlobVisitor Visitor() {
    return {
        [](void* self, const FoundBlob& blob) { static_cast<NewReferences*>(self)->Close(blob); },
        this};
  }
  // The index of the first one that is open; kLumigramMaxTags: there is none.
  int32_t FirstOpen() const {
    return static_cast<int32_t>(std::find(std::begin(isOpen_), std::end(isOpen_), true) - isOpen_);
  }

 private:
  void Close(const FoundBlob& blob) {
    for (int i = 0; i < kLumigramMaxTags; ++i) {
      if (isOpen_[i] && Keeps(TextOf(attr_.appExt[i].fileName), blob.name)) isOpen_[i] = false;
    }
  }

  const AttrInfo& attr_;
  bool isOpen_[kLumigramMaxTags];
};

RewriteResult FindBlobs(ByteSource& source, Kind kind, const RecordToWrite& record,
                        const AttrInfo& old, RewriteReport* report) {
  NewReferences references(record, old);
  if (references.FirstOpen() == kLumigramMaxTags) return kRewritten;
  Survey survey;
  if (Status s = SurveyPicture(source, kind, &survey, references.Visitor()); s != kOk) return s;
  report->tagOfBlob = references.FirstOpen();
  return report->tagOfBlob == kLumigramMaxTags ? kRewritten : kBlobMissing;
}

RewriteResult CheckRequest(ByteSource& source, Kind kind, const RewriteRequest& request,
                           RewriteReport* report) {
  OldPicture old;
  old.attr.reset(static_cast<AttrInfo*>(malloc(sizeof(AttrInfo))));
  if (old.attr == nullptr) return kNoRoom;
  const Status status =
      ReadPictureRecord(source, kind, old.attr.get(), &old.summary, &old.fingerprint);
  if (request.expected != nullptr && old.fingerprint.Value() != *request.expected) return kChanged;
  if (!request.replacesUnread) {
    if (status != kOk) return status;
    if (CountUnread(old.summary, report->unread)) return kUnread;
  }
  return FindBlobs(source, kind, request.record, *old.attr, report);
}

void Report(const NewPicture& picture, Kind kind, RewriteReport* report) {
  char document[kLumigramDocumentBufferBytes] = {};
  int32_t height = 0, width = 0, pop = 0;
  Fingerprint fingerprint;
  ByteSource source({picture.bytes.get(), picture.length});
  // A picture that cannot be read has a fingerprint that no picture has when it is read.
  (void)ExtractDocument(source, kind, {document, &height, &width, &pop, &fingerprint});
  report->fingerprint = fingerprint.Value();
  report->size = static_cast<int32_t>(picture.length);
}

}  // namespace

RewriteResult BuildRewrite(ByteSource& source, Kind kind, const RewriteRequest& request,
                           NewPicture* picture, RewriteReport* report) {
  if (RewriteResult r = CheckRequest(source, kind, request, report); r != kRewritten) return r;
  XmlStringInfo document;
  if (Status s = BuildDocument(request.record.attr, &document); s != kOk) return s;
  if (Status s = BuildPicture(source, kind, document, request.record, picture); s != kOk) return s;
  Report(*picture, kind, report);
  return kRewritten;
}

RewriteResult RewriteFile(const char* path, const RewriteRequest& request, RewriteReport* report) {
  FileType type;
  if (GetFileType(path, &type) != kOk) return kUnsupported;
  for (int i = 0; i < kTries; ++i) {
    OpenedPicture opened;
    errno = 0;
    const auto opening = opened.Open(path, OpenedPicture::Purpose::kToReplace);
    if (opening == OpenedPicture::Opening::kLocked) return kBusy;
    if (opening != OpenedPicture::Opening::kOpened) {
      report->error = errno;
      return kCannotOpen;
    }
    ByteSource source(opened.Bytes());
    NewPicture picture;
    const RewriteResult built =
        BuildRewrite(source, static_cast<Kind>(type), request, &picture, report);
    if (built != kRewritten) return built;
    switch (opened.Replace({picture.bytes.get(), picture.length})) {
      case OpenedPicture::Replacement::kReplaced:
        return kRewritten;
      case OpenedPicture::Replacement::kChanged:
        continue;
      case OpenedPicture::Replacement::kGone:
        return kCannotOpen;
      case OpenedPicture::Replacement::kCannotWrite:
        report->error = errno;
        return kNotReplaced;
    }
  }
  return kBusy;
}

}  // namespace lumigram
