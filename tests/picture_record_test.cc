// The whole record of a picture, and the counts of its summary.
#include <gtest/gtest.h>

#include "lumigram.h"
#include "tests/support/gif_builder.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

// The counts of a summary, in their order; six other fields precede them.
const char* const kCounts[] = {
    "refusedLabels",    "furtherLabels", "unknownParts", "refusedTags",  "droppedTags",
    "hiddenContents",   "refusedTexts",  "strayTexts",   "invalidTexts", "textsWithMarkup",
    "furtherDocuments", "unnamedBlobs",  "bytesAfterEnd"};

struct Taken {
  int32_t status;
  std::unique_ptr<AttrInfo> attr = std::make_unique<AttrInfo>();
  PictureSummary summary;
};

Taken TakeApart(const Bytes& picture, FileType type, Opened opened = Opened::kForReading) {
  Taken taken;
  memset(taken.attr.get(), '#', sizeof(AttrInfo));  // of another picture
  memset(&taken.summary, '#', sizeof taken.summary);
  const ScopedFile stream = Stream(picture, opened);
  fseek(stream.get(), 5, SEEK_SET);
  taken.status = GetPictureRecord(stream.get(), type, taken.attr.get(), &taken.summary);
  return taken;
}

std::string Counts(const PictureSummary& summary) {
  int32_t fields[6 + std::size(kCounts)];
  static_assert(sizeof fields == sizeof summary);
  memcpy(fields, &summary, sizeof fields);
  std::string counts;
  for (size_t i = 0; i < std::size(kCounts); ++i)
    if (fields[6 + i] != 0) counts += kCounts[i] + (" " + std::to_string(fields[6 + i]) + " ");
  return counts;
}

// The record in short: "name/note/part name/note/part | category | type | name=content ...".
std::string Texts(const AttrInfo& attr) {
  std::string labels, tags;
  for (int i = 0; i < attr.nameCount; ++i)
    labels += std::string(attr.name[i]) + "/" + attr.note[i] + "/" + attr.part[i] + " ";
  for (const TagEntry& tag : attr.tag)
    if (tag.tagName[0] != '\0') tags += std::string(tag.tagName) + "=" + tag.tagElement + " ";
  return labels + "| " + attr.category + " | " + attr.type + " | " + tags;
}

Bytes Png(const std::string& document) {
  return PngStart() + PngDocument(document) + kPngImage + kPngEnd;
}

void Check(const char* what, const std::string& inRoot, const std::string& texts,
           const std::string& counts) {
  SCOPED_TRACE(what);
  const Taken taken = TakeApart(Png("<emoji>" + inRoot + "</emoji>"), kFileTypePng);
  EXPECT_EQ(taken.status, 0);
  EXPECT_EQ(Texts(*taken.attr), texts);
  EXPECT_EQ(Counts(taken.summary), counts);
}

TEST(PictureRecord, HoldsWhatABatchReadWithholds) {
  // The ends of the surrogates, as a pair, and their neighbours.
  const std::string valid = "\xED\xA0\x80\xED\xBF\xBF\xED\x9F\xBF\xEE\x80\x80\xC0\x80";
  const std::string x25(25, 'x'), x256(256, 'x'), x257(257, 'x'), c1024(1024, 'c');
  const std::string full = Label("a", "<note>n</note><part>名詞</part>") + Tag("t", "1") +
                           "<category>c</category><type>y</type>" + Label("b") + Tag("u", "2");
  const std::string eleven = Repeat(Tag("t", "1"), 11);
  std::string names, namesHeld;
  for (char c = 'a'; c <= 'k'; ++c) {
    names += Tag(std::string(1, c), "1");
    namesHeld += std::string(1, c) + "=1 ";
  }
  Check("everything", full, "a/n/名詞 b// | c | y | t=1 u=2 ", "");
  Check("long part", Label("a", "<part>" + x257 + "</part>"), "a// |  |  | ", "refusedLabels 1 ");
  Check("longest part", Label("a", "<part>" + x256 + "</part>"), "a//" + x256 + " |  |  | ",
        "unknownParts 1 ");
  Check("names",
        "<label><note>n</note></label>" + Label("") + Label(x25) + Label(x257) + Label("b"),
        x25 + "// b// |  |  | ", "refusedLabels 4 ");
  Check("tags",
        Tag(x25, "1") + Tag(x257, "2") + Tag("t", c1024 + "c") + "<tags name=\"t</tags>" +
            Tag("u", c1024),
        "|  |  | " + x25 + "=1 u=" + c1024 + " ", "refusedTags 4 ");
  Check("once",
        "<category>c</category><category>d</category><type>" + x257 + "</type><type>y</type>",
        "| c |  | ", "refusedTexts 3 ");
  Check("text between", Label("a") + " \t\r\n" + Label("b") + "x" + Label("c") + "<type>y",
        "a// b// c// |  |  | ", "strayTexts 2 ");
  Check("eleven labels", Repeat(Label("a"), 11), Repeat("a// ", 10) + "|  |  | ",
        "furtherLabels 1 ");
  Check("eleven of a tag", eleven, "|  |  | " + Repeat("t=1 ", 11), "droppedTags 1 ");
  Check("eleven tag names", names, "|  |  | " + namesHeld, "droppedTags 1 ");
  Check("101 tags", Repeat(names, 9) + Tag("a", "1") + Tag("a", "2"),
        "|  |  | " + Repeat(namesHeld, 9) + "a=1 ", "droppedTags 10 ");
  Check("first content empty", Tag("t", "") + Tag("u", ""), "|  |  | t= u= ", "hiddenContents 1 ");
  Check("empty tag name", Tag("t", "1") + Tag("", "2") + Tag("u", "3"), "|  |  | t=1 u=3 ",
        "droppedTags 1 ");
  Check("text in a label", Label("a", "x<note>n</note>y<note>m</note>z"), "a/n/ |  |  | ",
        "strayTexts 4 ");
  Check("invalid text", Label("\xFF") + Tag("t", valid), "\xFF// |  |  | t=" + valid + " ",
        "invalidTexts 1 ");
  Check("lone surrogates",
        Tag("\xED\xAF\xBF", "\xED\xB0\x80") + Tag("u", "\xED\xA0\x80\xEE\x80\x80"),
        "|  |  | \xED\xAF\xBF=\xED\xB0\x80 u=\xED\xA0\x80\xEE\x80\x80 ", "invalidTexts 3 ");
  Check("markup", Tag("t", "a<type>b") + Tag("u", "</name>") + Tag("v", "<emoji>"),
        "|  |  | t=a<type>b u=</name> v=<emoji> ", "textsWithMarkup 3 ");
  Check("after the root", Label("a") + "</emoji>" + Label("b"), "a// |  |  | ", "strayTexts 1 ");
  const Taken taken = TakeApart(Png("<emoji>" + Label("a")), kFileTypePng);
  EXPECT_EQ(Texts(*taken.attr) + Counts(taken.summary), "a// |  |  | refusedLabels 1 ");
}

// Kind, dimensions, pop flag, size, document; then the counts.
std::string Properties(const Taken& t) {
  return testing::PrintToString(std::tuple(t.status, t.summary.fileType, t.summary.width,
                                           t.summary.height, t.summary.pop, t.summary.size,
                                           t.summary.hasDocument)) +
         " " + Counts(t.summary);
}

TEST(PictureRecord, CountsWhatARewriteDrops) {
  const std::string tag = Tag("t", "file://THIS/a/b.mid"), text = "<emoji>" + tag + "</emoji>";
  const Bytes gif = GifScreen(90, 80) + kGifPopMarker + GifComment(text),
              gifEnd = GifImage() + kGifEnd;
  const Bytes gifBlobs = GifApplication("", {}) + GifComment("<emoji", 6) +
                         GifBlob("EMJ1", "b.mid2", {1}) + GifBlob("EMJ2", "other", {2}) +
                         GifBlob("foreign", "x", {3});
  const Bytes png = PngStart() + PngDocument(text), pngEnd = kPngImage + kPngEnd;
  const Bytes pngBlobs =
      PngBlob("EMJ00000000", "b.mid2", {1}) + PngBlob("EMJ00000000", "other", {2}) +
      PngBlob("foreign4567", "b.mid", {3}) +
      PngChunk("emJe", Text("EMJ00000000") + Be32(9) + Text("b.mid")) +
      PngChunk("emJe", Text("EMJ00000000") + Be32(1) + Text("b") + Be32(2) + Text("b"));
  const Bytes jpeg = kJpegStart + JpegComment("<emoji") + JpegFrame() + JpegComment(text);
  const Bytes jpegEnd = kJpegScan + kJpegEnd;
  const std::tuple<const char*, FileType, Bytes, std::string> rows[] = {
      {"GIF, nothing in it", 1, GifScreen() + gifEnd, "(0, 1, 100, 80, 0, SIZE, 0) "},
      {"GIF, losing all kinds", 1, gif + gifBlobs + GifComment(text) + gifEnd + Bytes(7),
       "(0, 1, 90, 80, 1, SIZE, 1) furtherDocuments 1 unnamedBlobs 1 bytesAfterEnd 7 "},
      {"GIF, cut", 1, FirstOf(gif + gifEnd, 60), "(-30, 1, 90, 80, 1, SIZE, 0) "},
      {"GIF, wide", 1, GifScreen(961, 5) + gifEnd, "(-31, 1, 961, 5, 1, SIZE, 0) "},
      {"PNG, blobs", 3, png + pngBlobs + pngEnd, "(0, 3, 32, 16, 0, SIZE, 1) unnamedBlobs 4 "},
      {"PNG, document and bytes", 3, png + kPngImage + PngDocument(text) + kPngEnd + Bytes(9),
       "(0, 3, 32, 16, 0, SIZE, 1) furtherDocuments 1 bytesAfterEnd 9 "},
      {"JPEG, documents and bytes", 2, jpeg + JpegComment(text) + jpegEnd + kJpegEnd,
       "(0, 2, 32, 16, 0, SIZE, 1) furtherDocuments 1 bytesAfterEnd 2 "},
      {"JPEG without a scan", 2, jpeg + kJpegEnd + Bytes(3),
       "(0, 2, 32, 16, 0, SIZE, 1) bytesAfterEnd 3 "},
  };
  for (const auto& [what, type, picture, want] : rows) {
    SCOPED_TRACE(what);
    std::string properties = want;
    properties.replace(properties.find("SIZE"), 4, std::to_string(picture.size()));
    for (Opened opened : kBothWays)
      EXPECT_EQ(Properties(TakeApart(picture, type, opened)), properties);
  }
  const Taken kept = TakeApart(png + pngEnd, kFileTypePng);
  const AppExtEntry* const entries = kept.attr->appExt;
  EXPECT_EQ(
      entries[0].binaryDataUri + std::string("|") + entries[0].fileName + entries[1].binaryDataUri,
      "file://THIS/a/b.mid|b.mid");
  EXPECT_EQ(TakeApart(png + pngEnd, 4).status, -99);
  Bytes largest = png + pngEnd;
  largest.resize(2097152);
  EXPECT_EQ(TakeApart(largest, kFileTypePng).status, 0);
  EXPECT_EQ(TakeApart(largest + Bytes{0}, kFileTypePng).status, -99);
}

}  // namespace
}  // namespace lumigram::test
