// A record with clean texts, written into a picture of each kind and read back field by field.
#include "core/base/text.h"
#include "core/document/document_format.h"
#include "core/write/build_picture.h"
#include "core/write/document_builder.h"
#include "fuzz/input.h"
#include "tests/support/gif_builder.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

using namespace lumigram;
using namespace lumigram::fuzz;
using namespace lumigram::test;

namespace {

// A text that no tag can hide in, of at most 24 characters.
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
    CopyText(attr->name[i], "n" + CleanText(input, 255).substr(0, 20));
    CopyText(attr->note[i], CleanText(input, 256));
    CopyText(attr->part[i], GetPartName(input.Byte()));
  }
  CopyText(attr->category, CleanText(input, 256));
  CopyText(attr->type, CleanText(input, 256));
  const int tags = input.Byte() % kLumigramMaxTagGroups;
  for (int i = 0; i < tags; ++i) {
    CopyText(attr->tag[i].tagName,
             static_cast<char>('a' + i) + CleanText(input, 255).substr(0, 20));
    CopyText(attr->tag[i].tagElement, CleanText(input, 1024));
  }
  return attr;
}

void CheckElement(char* document, const char* start, const char* end, const char* wanted) {
  const auto content = Block(257);
  const int32_t status = GetElementContent(document, start, end, content.get());
  Require(status == (wanted[0] == '\0' ? kLumigramNoTags : 0) &&
              TextOf(*reinterpret_cast<char(*)[257]>(content.get())) == wanted,
          "category and type come back");
}

void CheckDocument(std::string text, const AttrInfo& wanted) {
  const auto attr = std::make_unique<AttrInfo>();
  Require(GetLabelInfo(text.data(), attr.get()) == 0, "labels are usable");
  Require(memcmp(attr->name, wanted.name, sizeof wanted.name) == 0, "names come back");
  Require(memcmp(attr->note, wanted.note, sizeof wanted.note) == 0, "notes come back");
  Require(memcmp(attr->part, wanted.part, sizeof wanted.part) == 0, "parts of speech come back");
  const auto tags = std::make_unique<TagCollection>();
  CollectTagGroups(text.data(), tags.get());
  for (int32_t i = 0; i < kLumigramMaxTags; ++i) {
    Require(TextOf(tags->tagName[i]) == TextOf(wanted.tag[i].tagName), "tag names come back");
    Require(TextOf(tags->tagElement[i]) == TextOf(wanted.tag[i].tagElement),
            "tag contents come back");
  }
  CheckElement(text.data(), kCategoryStart, kCategoryEnd, wanted.category);
  CheckElement(text.data(), kTypeStart, kTypeEnd, wanted.type);
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
    const int32_t status = BuildPicture(source, type, *document, *attr, &written);
    if (type == kFileTypePng && document->length > kLumigramMaxDocumentBytes - 6) {
      Require(status == kLumigramTooLong, "the longest documents do not go into PNG");
      continue;
    }
    Require(status == 0, "a clean record is written");
    const ReadResult read =
        ReadPicture(Bytes(written.bytes.get(), written.bytes.get() + written.length), type);
    Require(read.status == 0, "and read");
    CheckDocument(read.document, *attr);
  }
  return 0;
}
