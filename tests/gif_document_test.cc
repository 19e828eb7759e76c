// Documents, dimensions and pop flags of GIF pictures; new documents and blobs in them.
#include "core/gif/gif_writer.h"
#include "tests/support/gif_builder.h"
#include "tests/support/picture_checks.h"

namespace lumigram::test {
namespace {

// What the reader answers and stores: "status widthxheight pop document".
std::string Read(const Bytes& gif) {
  std::string results[2];
  for (Opened opened : kBothWays) {
    std::string buffer(kLumigramDocumentBufferBytes, '\0');
    int32_t height = 0, width = 0, pop = 0;
    const int32_t status =
        GetXmlStringFromGif(Stream(gif, opened).get(), buffer.data(), &height, &width, &pop);
    results[int(opened)] = std::to_string(status) + " " + std::to_string(width) + "x" +
                           std::to_string(height) + " " + std::to_string(pop) + buffer.c_str();
  }
  EXPECT_EQ(results[0], results[1]) << "both kinds of stream give the same";
  return results[0];
}

const std::string kText = Document(40);
const Bytes kDocument = GifComment(kText), kScreen = GifScreen(), kEnd = GifImage() + kGifEnd;

TEST(GifReader, Documents) {
  const std::string longest = Document(10240), shorter = Document(10190);
  const Bytes otherFirst = {0x21, 0xFE, 5, 'o', 't', 'h', 'e', 'r'}, cut = {0x21, 0xFE, 1};
  const Bytes unknown = {0x21, 0xCE, 40}, image = FirstOf(GifImage(40, 30, 0), 11);
  const struct {
    Bytes blocks;
    int32_t status;
    std::string document;
  } cases[] = {
      {GifComment("text") + GifComment("<emoji") + kEnd, 0, ""},
      {kGifControl + kGifPlainText + kDocument + kEnd, 0, kText},
      {GifComment(Document(522)) + kEnd, 0, Document(522)},
      {GifComment("12345<emoji", 5) + otherFirst + GifChain(Text(kText)) + kEnd, 0, kText},
      {GifComment("<emoji>") + kEnd, 0, "<emoji>"},
      {GifImage() + kDocument + GifComment("<emoji>2") + kGifEnd, 0, kText},
      // The limit holds for every comment, and comes before truncation.
      {GifComment(longest) + kEnd, 0, longest},
      {GifComment(longest + "x") + kEnd, -41, longest.substr(0, 10200)},
      {GifComment(shorter) + GifComment(std::string(50, 'x')) + kEnd, 0, shorter},
      {GifComment(shorter) + GifComment(std::string(51, 'x')) + kEnd, -41, shorter},
      {GifComment(longest) + cut, -41, longest},
      // The file's last byte ends the walk, but not right behind the screen.
      {{7}, -30, ""},
      {{7, 7}, 0, ""},
      {kDocument + Bytes{0x21}, 0, kText},
      {kGifEnd + kDocument + kGifEnd, 0, ""},
      // What is no block that we know of is looked through for the next one.
      {Bytes{7, 0} + unknown + kDocument + Bytes{8} + kEnd, 0, kText},
      {unknown + kGifEnd + kDocument + kEnd, 0, ""},
      // Image data that claim all that is left of the file (57 bytes) end there.
      {image + Bytes{57} + kDocument + Bytes(13, 7), 0, kText},
      {image + Bytes{57} + kDocument + Bytes(14, 7), -30, ""},
  };
  for (const auto& c : cases) {
    const std::string want = std::to_string(c.status) + " 100x80 0" + c.document;
    EXPECT_EQ(Read(GifScreen(100, 80, "GIF87a") + c.blocks), want) << "case " << &c - cases;
  }
}

TEST(GifReader, Dimensions) {
  EXPECT_EQ(Read(kScreen + GifImage(120, 40) + GifImage(60, 90) + kGifEnd), "0 120x90 0");
  const Bytes image = GifImage(960, 960, 0x87), screen = GifScreen(960, 960, "GIF89a", 0x87);
  EXPECT_EQ(Read(screen + image + kGifEnd), "0 960x960 0");
  EXPECT_EQ(Read(GifScreen(961, 5)), "-31 961x5 1");
  EXPECT_EQ(Read(GifScreen(5, 961)), "-31 5x961 1");
  EXPECT_EQ(Read(kScreen + GifImage(961, 200) + kGifEnd), "-31 100x80 1");
  EXPECT_EQ(Read(kScreen + GifImage(200, 961) + kGifEnd), "-31 100x80 1");
  const Bytes header = GifScreen(7, 8, "GIF89a", 0x07);
  EXPECT_EQ(Read(FirstOf(header, 5)), "-30 0x0 0");
  EXPECT_EQ(Read(FirstOf(header, 12)), "-30 0x0 1");
  EXPECT_EQ(Read(header), "-30 7x8 1");
}

TEST(GifReader, PopFlag) {
  const Bytes bad = GifComment("Creator=a b\r\nEmojiID=1");
  const std::pair<Bytes, int32_t> cases[] = {
      {GifApplication("NETSCAPE2.0", GifChain({1, 0, 0})) + kGifPopMarker, 1},
      {GifApplication("HTMLEMJI1.1", GifChain({1})), 0},
      {GifApplication("HTMLEMJI1.0", GifChain({})), 0},
      {Bytes{0x21, 0xFF, 0} + Text("HTMLEMJI1.0") + GifChain({1}), 1},
      {bad + kGifPopMarker + GifComment("creator="), 1},
      {kGifPopMarker + GifComment("Creator=a\r\nEmojiID=az.AZ_09-"), 1},
      {kGifPopMarker + GifComment("Creator=a\r\n\r\n \xFF EmojiID EmojiID=b"), 1},
      {kGifPopMarker + bad + kGifPopMarker + GifComment("Creator=a\r\nEmojiID=b"), 0},
  };
  for (const auto& [blocks, pop] : cases) {
    EXPECT_EQ(Read(kScreen + blocks + kEnd), "0 100x80 " + std::to_string(pop))
        << testing::PrintToString(blocks);
    EXPECT_EQ(Read(GifScreen(1, 1, "GIF89b") + blocks + kEnd), "0 40x30 0");
  }
  for (const char* text :
       {"", "a", "\r\nEmojiID=b", "a\nEmojiID=b", "a\rEmojiID=b", "a b\r\nEmojiID=b",
        "a\r\nEmojiId=b", "a\r\nEmojiID=", "a\r\nEmojiID=b\r\n", "a\r\nEmojiID=\xC3\xA9"}) {
    const Bytes creator = GifComment("Creator=" + std::string(text));
    EXPECT_EQ(Read(kScreen + kGifPopMarker + creator + kEnd), "0 100x80 0") << text;
  }
  // Where the marker could be, its eleven bytes are looked at, whatever the block's size.
  const Bytes tiny = GifApplication("", Bytes(10, 0));
  EXPECT_EQ(Read(kScreen + tiny), "-30 100x80 1");
  EXPECT_EQ(Read(kScreen + tiny + Bytes{0}), "0 100x80 0");
  EXPECT_EQ(Read(GifScreen(1, 1, "GIF87a") + tiny), "0 1x1 0");
}

TEST(GifReader, Helpers) {
  const std::string accepted = ".-_0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  for (int byte = -1; byte < 260; ++byte) {
    const bool is = byte < 128 && accepted.find(char(byte)) != std::string::npos;
    EXPECT_EQ(IsAcceptPopCommentData(byte), is ? 0 : -1) << byte;
  }
  EXPECT_EQ(GetSizeColorTable(0x7F), 0u);
  EXPECT_EQ(GetSizeColorTable(0xF3), 48u);
}

// The blobs of a record, from entry `first` on: label, name, URI.
AttrInfo With(const std::vector<std::array<std::string, 3>>& blobs, size_t first = 0) {
  AttrInfo attr = {};
  AppExtEntry* entry = &attr.appExt[first];
  for (const auto& [label, name, uri] : blobs) {
    label.copy(entry->labelName, sizeof(entry->labelName));
    name.copy(entry->fileName, sizeof(entry->fileName));
    uri.copy(entry++->binaryDataUri, sizeof(AppExtEntry::binaryDataUri));
  }
  return attr;
}

void CheckWrite(const Bytes& picture, std::string_view document, const AttrInfo& attr,
                int32_t status, const Bytes& want = {}) {
  CheckWriter(SetXmlStringToGif, picture, document, status, want, &attr);
}

const Bytes kOld = GifComment("<emoji>x", 7), kImage = GifImage();
const Bytes kWide = GifScreen(999, 1, "GIF87a"), kNameless = GifApplication("EMJ", {0});
const Bytes kLarge = GifBlob("EMJ2", "large.bin", Bytes(600, 7)), kSmall = GifBlob("EMJ", "s", {});
const AttrInfo kNone = With({});

TEST(GifWriter, ChangesNothingButMetadata) {
  const Bytes foreign = GifComment("12345<emoji>1234", 5) + GifComment("<emoji") + kGifPopMarker +
                        kGifControl + kGifPlainText + Bytes{0x21, 0xCE, 2, 0x3B, 0x2C, 0, 7} +
                        GifApplication("", {}) + GifApplication("EM", GifChain({1}));
  const Bytes blobs = kLarge + kNameless + kSmall;
  const AttrInfo keepsLarge = With({{"EMJ", "large", "file://THIS/"}}, 99);
  const AttrInfo keepsAll = With({{"", "", "file://THIS/"}});
  const AttrInfo keepsNone = With({{"", "large", "file://THAT/"}, {"", "l", ""}});
  const struct {
    Bytes source;
    std::string document;
    const AttrInfo& attr;
    Bytes want;
  } cases[] = {
      {foreign + kImage + kImage, kText, kNone, foreign + kDocument + kImage + kImage},
      {kOld + foreign + kOld + kImage, kText, kNone, kDocument + foreign + kImage},
      {foreign + kImage + kOld + foreign, kText, kNone, foreign + kDocument + kImage + foreign},
      {kOld + foreign + kImage + kOld, "", kNone, foreign + kImage},
      {foreign, kText, kNone, foreign},
      {foreign + kOld, kText, kNone, foreign + kDocument},
      {blobs + kImage + blobs, kText, kNone, kDocument + kImage},
      {blobs + kImage + blobs, kText, keepsNone, kDocument + kImage},
      {blobs + kImage + blobs, kText, keepsLarge, kLarge + kDocument + kImage + kLarge},
      {blobs + kImage + blobs, "", keepsAll, blobs + kImage + blobs},
      {kImage, Document(10240), kNone, GifComment(Document(10240)) + kImage},
      {foreign, Document(10241), kNone, foreign},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    CheckWrite(kWide + c.source + kGifEnd, c.document, c.attr, 0, kWide + c.want + kGifEnd);
  }
  CheckWrite(kWide + kOld, Document(10241), kNone, -41);
}

TEST(GifWriter, AddsBlobs) {
  const TempFolder folder;
  const Bytes data(510, 0x21), end = kImage + kGifEnd;
  const std::string some = folder.Write("some", data), none = folder.Write("none", {});
  const AttrInfo attr = With({{"EMJLABEL001+", "some", some},
                              {"", "unlabelled", some},
                              {"EMJ", std::string(257, 'n'), none},
                              {"other", "o", some}});
  const Bytes other = GifBlob("other", "o", data);
  const Bytes want = kWide + kDocument + GifBlob("EMJLABEL001", "some", data) +
                     GifBlob("EMJ", std::string(255, 'n'), {}) + other + end;
  CheckWrite(kWide + kOld + kSmall + end, kText, attr, 0, want);
  CheckWrite(kWide + end, kText, attr, 0, want);
  CheckWrite(kWide + end, "", attr, 0, kWide + end);
  // What a write has added, the next one takes away, but for what does not look like ours.
  CheckWrite(want, "<emoji>", kNone, 0, kWide + GifComment("<emoji>") + other + end);
  CheckWrite(kWide + end, kText, With({{"EMJ", "", some}}), -99);
  CheckWrite(kWide + end, kText, With({{"EMJ", "n", folder.Path("missing")}}), -99);
  // Its size is that of a page, whatever it has.
  CheckWrite(kWide + end, kText, With({{"EMJ", "n", "/sys/devices/system/cpu/online"}}), -99);
}

TEST(GifDocument, EveryTruncation) {
  const Bytes parts[] = {kScreen, kDocument, kGifPopMarker, kGifControl, kImage, kLarge, kGifEnd};
  Bytes start;
  for (const Bytes& part : parts) {
    for (size_t n = 0; n < part.size(); ++n) {
      SCOPED_TRACE(start.size() + n);
      // One byte more than a block, whatever it is, is taken for the trailer when reading, and all
      // that is left of the file for image data.
      const std::string status = n == 1 && start.size() > kScreen.size() ? "0 " : "-3";
      EXPECT_TRUE(&part >= &parts[4] || Read(start + FirstOf(part, n)).starts_with(status));
      const bool cutsLabel = n >= 3 && n < 14 && (part == kGifPopMarker || part == kLarge);
      CheckWrite(start + FirstOf(part, n), kText, kNone, cutsLabel ? -99 : -30);
    }
    start += part;
  }
}

}  // namespace
}  // namespace lumigram::test
