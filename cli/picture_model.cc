#include "cli/picture_model.h"

#include <stdio.h>

#include <algorithm>
#include <utility>

#include "cli/spelling.h"
#include "core/base/status.h"
#include "core/document/blob_entries.h"
#include "core/document/document_format.h"
#include "core/file/signature.h"

namespace lumigram::cli {
namespace {

void TakeDocument(const std::vector<char>& buffer, Reading* reading) {
  const std::string_view text = buffer.data();
  *reading = InspectDocument(text);
  const auto isNul = [](char c) { return c == '\0'; };
  if (!std::all_of(buffer.begin() + static_cast<ptrdiff_t>(text.size()), buffer.end(), isNul)) {
    reading->Add(Finding::kUnread, kTooLong, "the document continues after a NUL");
  }
}

// Reads one byte more than a picture may have, and nothing after it. The first bytes tell the kind.
Picture ReadStandardInput() {
  std::vector<uint8_t> bytes(kLumigramMaxPictureBytes + 1);
  bytes.resize(fread(bytes.data(), 1, bytes.size(), stdin));
  if (ferror(stdin)) throw FailureOfSystem(kCannotOpen);
  if (bytes.empty()) throw Failure(kBadArgument, "no bytes");
  if (bytes.size() > kLumigramMaxPictureBytes) throw Failure(kBadArgument, "over 2 MiB");
  const std::optional<Kind> kind = KindFromSignature(bytes);
  if (!kind) throw Failure(kUnsupported, "neither a GIF nor a PNG nor a JPEG picture");
  return InspectPicture(*kind, std::move(bytes));
}

void FindInBlobs(const Picture& picture, Reading* reading) {
  for (const Blob& blob : picture.blobs) {
    const std::string which = "blob " + Quoted(blob.name);
    if (!IsReferredTo(blob, reading->whole)) {
      reading->Add(Finding::kUnnamed, kBadBlob, "no tag refers to " + which);
    }
    if (!IsJavaSpelling(blob.name)) {
      reading->Add(Finding::kNote, kOk, which + " has a spelling that Java does not find");
    }
  }
  for (const Tag& tag : reading->whole.tags) {
    const std::string which = "tag " + Quoted(tag.name);
    if (IsWithoutBlob(tag, picture.blobs)) {
      reading->Add(Finding::kMissing, kBadBlob,
                   which + " refers to a blob that is not in the picture");
    }
    if (!IsJavaSpelling(tag.name)) {
      reading->Add(Finding::kNote, kOk, which + " has a spelling that Java does not look up");
    }
  }
}

void FindInSurvey(const Survey& survey, size_t size, Reading* reading) {
  if (survey.documentAfterImage) {
    reading->Add(Finding::kNote, kOk, "the document follows the first image");
  }
  if (survey.documents > 1) {
    reading->Add(Finding::kUnread, kTooLong, "there are further documents, which are not read");
  }
  if (survey.brokenBlobs > 0) {
    reading->Add(Finding::kUnread, kBadBlob, "a blob has wrong lengths: it is not read");
  }
  if (survey.foreignBlobs > 0) {
    reading->Add(Finding::kDropped, kBadBlob,
                 "a blob's label does not begin with EMJ: rewriting drops it");
  }
  if (size > survey.end) {
    reading->Add(Finding::kDropped, kMalformed,
                 std::to_string(size - survey.end) +
                     " bytes follow the end of the picture: rewriting drops them");
  }
}

}  // namespace

const char* Picture::KindName() const {
  switch (kind) {
    case Kind::kGif:
      return "GIF";
    case Kind::kJpeg:
      return "JPEG";
    case Kind::kPng:
      return "PNG";
  }
  return "";
}

const Finding* Picture::First(Finding::Severity severity) const {
  const auto isWanted = [severity](const Finding& finding) { return finding.severity == severity; };
  const auto found = std::find_if(reading.findings.begin(), reading.findings.end(), isWanted);
  return found == reading.findings.end() ? nullptr : &*found;
}

Failure Explained(const std::string& path, const Failure& failure, Access access) {
  char words[kObstacleWords];
  const bool isFound = FindObstacle(path.c_str(), access, words) != Obstacle::kNone;
  return isFound ? Failure(failure.code, words) : failure;
}

Picture ReadPicture(const std::string& path) {
  if (path == kStandardInput) return ReadStandardInput();
  OpenedPicture file;
  return ReadPicture(path, OpenedPicture::Purpose::kToRead, &file);
}

Picture ReadPicture(const std::string& path, OpenedPicture::Purpose purpose,
                    OpenedPicture* file) try {
  FileType type = kFileTypeUnknown;
  if (GetFileType(path.c_str(), &type) != kOk) {
    throw Failure(kUnsupported, LumigramStatusText(kUnsupported));
  }
  OpenRegularFile(path, purpose, file);
  return InspectPicture(static_cast<Kind>(type), {file->Bytes().begin(), file->Bytes().end()});
} catch (const Failure& failure) {
  throw Explained(path, failure);
}

Picture InspectPicture(Kind kind, std::vector<uint8_t> bytes) {
  Picture picture;
  picture.kind = kind;
  picture.bytes = std::move(bytes);
  std::vector<char> document(kLumigramDocumentBufferBytes);
  const int32_t status =
      GetXmlStringFromBytes(picture.bytes.data(), picture.bytes.size(), static_cast<FileType>(kind),
                            document.data(), &picture.height, &picture.width, &picture.pop);
  if (status != kOk && status != kNoDocument) {
    const bool noFrame = status == kNoFrameHeader;
    throw Failure(status, noFrame ? "a JPEG without dimensions" : LumigramStatusText(status));
  }
  picture.hasDocument = status == kOk;
  if (picture.hasDocument) {
    TakeDocument(document, &picture.reading);
    picture.document = WithoutPadding({document.data(), document.size()});
  }
  Layout layout = LayOut(kind, picture.bytes);
  picture.blobs = std::move(layout.blobs);
  FindInBlobs(picture, &picture.reading);
  picture.survey = layout.survey;
  FindInSurvey(picture.survey, picture.bytes.size(), &picture.reading);
  return picture;
}

bool IsReferredTo(const Blob& blob, const Document& document) {
  return std::any_of(document.tags.begin(), document.tags.end(), [&blob](const Tag& tag) {
    return tag.blob == nullptr && RefersToThisPicture(tag.content) &&
           Keeps(BlobName(tag.content), blob.name);
  });
}

bool IsWithoutBlob(const Tag& tag, const std::vector<Blob>& blobs) {
  return tag.blob == nullptr && RefersToThisPicture(tag.content) &&
         std::none_of(blobs.begin(), blobs.end(),
                      [&tag](const Blob& blob) { return Keeps(BlobName(tag.content), blob.name); });
}

}  // namespace lumigram::cli
