#include "tools/picture_model.h"

#include <algorithm>

#include "core/base/status.h"
#include "core/document/document_format.h"
#include "tools/spelling.h"

namespace lumigram::tool {
namespace {

void TakeDocument(const std::vector<char>& buffer, Reading* reading) {
  const std::string_view text = buffer.data();
  *reading = ReadDocument(text);
  const auto isNul = [](char c) { return c == '\0'; };
  if (!std::all_of(buffer.begin() + static_cast<ptrdiff_t>(text.size()), buffer.end(), isNul)) {
    reading->Add(Finding::kUnread, kTooLong, "the document goes on behind a NUL");
  }
}

bool IsSpelledOtherwise(const std::string& stored) { return ToJava(ToUtf8(stored)) != stored; }

void FindInBlobs(const Picture& picture, Reading* reading) {
  for (const Blob& blob : picture.blobs) {
    const std::string which = "blob " + Quoted(blob.name);
    if (!IsNamed(blob, reading->whole)) {
      reading->Add(Finding::kUnread, kBadBlob, which + " is named by no tag");
    }
    if (IsSpelledOtherwise(blob.name)) {
      reading->Add(Finding::kNote, kOk, which + " is spelled so that Java does not find it");
    }
  }
  for (const Tag& tag : reading->whole.tags) {
    const std::string which = "tag " + Quoted(tag.name);
    const auto isMeant = [&tag](const Blob& blob) {
      return BeginsWith(blob.name, BlobReference(tag.content));
    };
    if (BeginsWith(tag.content, kThisPicture) &&
        std::none_of(picture.blobs.begin(), picture.blobs.end(), isMeant)) {
      reading->Add(Finding::kNote, kOk, which + " refers to a blob that is not there");
    }
    if (IsSpelledOtherwise(tag.name)) {
      reading->Add(Finding::kNote, kOk, which + " is spelled so that Java does not look it up");
    }
  }
}

void FindInLayout(const Layout& layout, size_t size, Reading* reading) {
  if (layout.behindImage) {
    reading->Add(Finding::kNote, kOk, "the document stands behind the first image");
  }
  if (layout.documents > 1) {
    reading->Add(Finding::kUnread, kTooLong, "there are further documents, which are not read");
  }
  if (layout.brokenBlobs > 0) {
    reading->Add(Finding::kUnread, kBadBlob, "a blob's lengths do not fit: it is not read");
  }
  if (layout.foreignBlobs > 0) {
    reading->Add(Finding::kDropped, kBadBlob,
                 "a blob's label does not begin with EMJ: rewriting drops it");
  }
  if (size > layout.end) {
    reading->Add(Finding::kDropped, kMalformed,
                 std::to_string(size - layout.end) +
                     " bytes follow the end of the picture: rewriting drops them");
  }
}

}  // namespace

const char* Picture::TypeName() const {
  return type == kFileTypeGif ? "GIF" : type == kFileTypePng ? "PNG" : "JPEG";
}

const Finding* Picture::First(Finding::Kind kind) const {
  const auto isOfKind = [kind](const Finding& finding) { return finding.kind == kind; };
  const auto found = std::find_if(reading.findings.begin(), reading.findings.end(), isOfKind);
  return found == reading.findings.end() ? nullptr : &*found;
}

Picture ReadPicture(const std::string& path) {
  FileType type = kFileTypeUnknown;
  if (GetFileType(path.c_str(), &type) != kOk) {
    throw Failure(kUnsupported, LumigramStatusText(kUnsupported));
  }
  return InspectPicture(type, ReadRegularFile(path));
}

Picture InspectPicture(FileType type, std::vector<uint8_t> bytes) {
  Picture picture;
  picture.type = type;
  picture.bytes = std::move(bytes);
  const ScopedFile stream = OpenMemory(picture.bytes);
  std::vector<char> document(kLumigramDocumentBufferBytes);
  const int32_t status = GetXmlString(stream.get(), type, document.data(), &picture.height,
                                      &picture.width, &picture.pop);
  if (status != kOk && status != kNoDocument) {
    const bool noFrame = status == kNoFrameHeader;
    throw Failure(status, noFrame ? "a JPEG without dimensions" : LumigramStatusText(status));
  }
  picture.hasDocument = status == kOk;
  if (picture.hasDocument) TakeDocument(document, &picture.reading);
  Layout layout = LayOut(type, picture.bytes);
  picture.blobs = std::move(layout.blobs);
  FindInBlobs(picture, &picture.reading);
  FindInLayout(layout, picture.bytes.size(), &picture.reading);
  return picture;
}

bool IsNamed(const Blob& blob, const Document& document) {
  return std::any_of(document.tags.begin(), document.tags.end(), [&blob](const Tag& tag) {
    return tag.blob == nullptr && BeginsWith(tag.content, kThisPicture) &&
           BeginsWith(blob.name, BlobReference(tag.content));
  });
}

}  // namespace lumigram::tool
