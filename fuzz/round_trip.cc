// Writes a record with clean texts into a picture of each kind, and reads it back field by field.
// Input: the record.
#include "core/base/text.h"
#include "core/document/document_builder.h"
#include "core/document/document_format.h"
#include "core/write/build_picture.h"
#include "fuzz/input.h"
#include "tests/support/gif_builder.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

using namespace lumigram;
using namespace lumigram::fuzz;
using namespace lumigram::test;

namespace {

// A text of at most 24 characters, without the characters that begin a tag or end a name.
std::string CleanText(Input& input, size_t limit) {
  std::string text = input.Text(limit);
  std::replace(text.begin(), text.end(), '<', '_');
  std::replace(text.begin(), text.end(), '"', '_');
  while (CountCharacters(text) > kLumigramMaxCharacters) text.pop_back();
  return text;
}

std::unique_ptr<AttrInfo> TakeRecord(Input& input) {
  auto attr = std::make_unique<AttrInfo>();
  const int labels = 1 + input.Byte() % kLumigramMaxLabels;
  for (int i = 0; i < labels; ++i) {
    CopyText(attr->name[i], std::string("n").append(CleanText(input, 255), 0, 20));
    CopyText(attr->note[i], CleanText(input, 256));
    CopyText(attr->part[i], GetPartName(input.Byte()));
  }
  CopyText(attr->category, CleanText(input, 256));
  CopyText(attr->type, CleanText(input, 256));
  const int tags = input.Byte() % kLumigramMaxTagGroups;
  for (int i = 0; i < tags; ++i) {
    CopyText(attr->tag[i].tagName,
             std::string(1, static_cast<char>('a' + i)).append(CleanText(input, 255), 0, 20));
    CopyText(attr->tag[i].tagElement, CleanText(input, 1024));
  }
  return attr;
}

// Requires that the picture has the record that was written, and that a batch read delivers all of
// it.
void CheckRecord(const Bytes& picture, FileType type, const AttrInfo& wanted) {
  const auto attr = std::make_unique<AttrInfo>();
  PictureSummary summary;
  const ScopedFile stream = Stream(picture);
  Require(GetPictureRecord(stream.get(), type, attr.get(), &summary) == 0, "the record is read");
  attr->labelCount = attr->nameCount = attr->noteCount = attr->partCount = 0;
  // Exception: if the first content is empty, a batch read delivers none.
  summary.hiddenContents = 0;
  summary.invalidTexts = 0;
  PictureSummary nothingLost = {};
  nothingLost.fileType = type;
  nothingLost.width = summary.width;
  nothingLost.height = summary.height;
  nothingLost.size = static_cast<int32_t>(picture.size());
  nothingLost.hasDocument = 1;
  Require(memcmp(&summary, &nothingLost, sizeof summary) == 0, "nothing is lost");
  for (int i = 0; i < kLumigramMaxLabels; ++i) {
    Require(TextOf(attr->name[i]) == TextOf(wanted.name[i]), "names come back");
    Require(TextOf(attr->note[i]) == TextOf(wanted.note[i]), "notes come back");
    Require(TextOf(attr->part[i]) == TextOf(wanted.part[i]), "parts of speech come back");
  }
  Require(TextOf(attr->category) == TextOf(wanted.category), "the category comes back");
  Require(TextOf(attr->type) == TextOf(wanted.type), "the type comes back");
  for (int i = 0; i < kLumigramMaxTags; ++i) {
    Require(TextOf(attr->tag[i].tagName) == TextOf(wanted.tag[i].tagName), "tag names come back");
    Require(TextOf(attr->tag[i].tagElement) == TextOf(wanted.tag[i].tagElement),
            "tag contents come back");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const auto attr = TakeRecord(input);
  auto document = std::make_unique<XmlStringInfo>();
  if (BuildDocument(*attr, document.get()) != kOk) return 0;  // too long
  const std::pair<FileType, Bytes> pictures[] = {
      {kFileTypeGif, GifScreen() + GifImage() + kGifEnd},
      {kFileTypeJpeg, kJpegStart + JpegFrame() + kJpegScan + kJpegEnd},
      {kFileTypePng, PngStart() + kPngImage + kPngEnd},
  };
  for (const auto& [type, picture] : pictures) {
    NewPicture written;
    const ScopedFile stream = Stream(picture);
    ByteSource source(stream.get());
    const int32_t status = BuildPicture(source, *KindOf(type), *document, *attr, &written);
    if (type == kFileTypePng && document->length > kLumigramMaxDocumentBytes - 6) {
      Require(status == kLumigramTooLong, "a PNG cannot have the longest documents");
      continue;
    }
    Require(status == 0, "a clean record is written");
    CheckRecord(Bytes(written.bytes.get(), written.bytes.get() + written.length), type, *attr);
  }
  return 0;
}
