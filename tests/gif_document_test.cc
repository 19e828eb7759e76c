// Documents, dimensions and pop flags of GIF pictures, read and written, and new blobs.
#include "core/gif/gif_writer.h"
#include "tests/support/gif_builder.h"
#include "tests/support/picture_checks.h"

namespace lumigram::test {
namespace {

// Wants "status widthxheight pop document".
void CheckRead(const char* what, const Bytes& gif, const std::string& want) {
  for (Opened opened : kBothWays) {
    std::string text(kLumigramDocumentBufferBytes, '\0');
    int32_t height = 0, width = 0, pop = 0;
    const int32_t status =
        GetXmlStringFromGif(Stream(gif, opened).get(), text.data(), &height, &width, &pop);
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    const std::string result = std::to_string(status) + " " + size + " " + std::to_string(pop);
    EXPECT_EQ(result + text.c_str(), want) << what;
  }
}

const std::string kText = Document(40);
const Bytes kDocument = GifComment(kText), kScreen = GifScreen(), kEnd = GifImage() + kGifEnd;

TEST(GifReader, Documents) {
  const std::string longest = Document(10240), shorter = Document(10190);
  const Bytes otherFirst = {0x21, 0xFE, 5, 'o', 't', 'h', 'e', 'r'}, cut = {0x21, 0xFE, 1};
  const Bytes unknown = {0x21, 0xCE, 40}, image = FirstOf(GifImage(40, 30, 0), 11);
  const auto check = [](const char* what, const Bytes& blocks, int status, std::string document) {
    CheckRead(what, GifScreen(100, 80, "GIF87a") + blocks,
              std::to_string(status) + " 100x80 0" + document);
  };
  check("other comments", GifComment("text") + GifComment("<emoji") + kEnd, 0, "");
  check("after others", kGifControl + kGifPlainText + kDocument + kEnd, 0, kText);
  check("three sub-blocks", GifComment(Document(522)) + kEnd, 0, Document(522));
  check("in a later one", GifComment("12345<emoji", 5) + otherFirst + GifChain(Text(kText)) + kEnd,
        0, kText);
  check("shortest", GifComment("<emoji>") + kEnd, 0, "<emoji>");
  check("first of two", GifImage() + kDocument + GifComment("<emoji>2") + kGifEnd, 0, kText);
  check("longest", GifComment(longest) + kEnd, 0, longest);
  check("too long", GifComment(longest + "x") + kEnd, -41, longest.substr(0, 10200));
  check("both at the limit", GifComment(shorter) + GifComment(Document(50)) + kEnd, 0, shorter);
  check("both over it", GifComment(shorter) + GifComment(Document(51)) + kEnd, -41, shorter);
  check("over it and cut", GifComment(longest) + cut, -41, longest);
  check("two odd bytes", {7, 7}, 0, "");
  check("after the trailer", kGifEnd + kDocument + kGifEnd, 0, "");
  check("odd bytes", Bytes{7, 0} + unknown + kDocument + Bytes{8} + kEnd, 0, kText);
  check("odd trailer", unknown + kGifEnd + kDocument + kEnd, 0, "");
  // A sub-block that claims all remaining bytes of the file (57) ends the image data.
  check("image over the end", image + Bytes{57} + kDocument + Bytes(13, 7), 0, kText);
  check("image up to the end", image + Bytes{57} + kDocument + Bytes(14, 7), -30, "");
}

TEST(GifReader, Dimensions) {
  CheckRead("two images", kScreen + GifImage(120, 40) + GifImage(60, 90) + kGifEnd, "0 120x90 0");
  const Bytes image = GifImage(960, 960, 0xF3), screen = GifScreen(960, 960, "GIF89a", 0x87);
  CheckRead("largest", screen + image + kGifEnd, "0 960x960 0");
  CheckRead("screen too wide", GifScreen(961, 5), "-31 961x5 1");
  CheckRead("screen too high", GifScreen(5, 961), "-31 5x961 1");
  CheckRead("image too wide", kScreen + GifImage(961, 200) + kGifEnd, "-31 100x80 1");
  CheckRead("image too high", kScreen + GifImage(200, 961) + kGifEnd, "-31 100x80 1");
  const Bytes header = GifScreen(7, 8, "GIF89a", 0x7F);
  CheckRead("cut after the signature", FirstOf(header, 6), "-30 0x0 1");
  CheckRead("cut after the screen", header, "-30 7x8 1");
}

TEST(GifReader, PopFlag) {
  const Bytes bad = GifComment("Creator=a b\r\nEmojiID=1");
  const auto check = [](const char* what, const Bytes& blocks, int pop) {
    CheckRead(what, kScreen + blocks + kEnd, "0 100x80 " + std::to_string(pop));
    CheckRead(what, GifScreen(1, 1, "GIF89b") + blocks + kEnd, "0 40x30 0");
  };
  check("after another", GifApplication("NETSCAPE2.0", GifChain({1, 0, 0})) + kGifPopMarker, 1);
  check("other version", GifApplication("HTMLEMJI1.1", GifChain({1})), 0);
  check("without data", GifApplication("HTMLEMJI1.0", GifChain({})), 0);
  check("wrong size", Bytes{0x21, 0xFF, 0} + Text("HTMLEMJI1.0") + GifChain({1}), 1);
  check("after the creator", bad + kGifPopMarker + GifComment("creator="), 1);
  check("sound creator", kGifPopMarker + GifComment("Creator=a\r\nEmojiID=az.AZ_09-"), 1);
  check("anything between keys",
        kGifPopMarker + GifComment("Creator=a\r\n\r\n \xFF EmojiID EmojiID=b"), 1);
  check("first creator bad",
        kGifPopMarker + bad + kGifPopMarker + GifComment("Creator=a\r\nEmojiID=b"), 0);
  for (const char* text :
       {"", "a", "\r\nEmojiID=b", "a\nEmojiID=b", "a\rEmojiID=b", "a b\r\nEmojiID=b",
        "a\r\nEmojiId=b", "\377a\r\nEmojiID=b", "a\r\nEmojiID=\377b",
        "a\r\nEmojiID=", "a\r\nEmojiID=b\r\n", "a\r\nEmojiID=\xC3\xA9"}) {
    const Bytes creator = GifComment("Creator=" + std::string(text));
    CheckRead(text, kScreen + kGifPopMarker + creator + kEnd, "0 100x80 0");
  }
  std::string accepted;
  for (int byte = -1; byte < 260; ++byte)
    if (IsAcceptPopCommentData(byte) == 0) accepted += char(byte);
  EXPECT_EQ(accepted, "-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz");
  EXPECT_EQ(IsAcceptPopCommentData(' '), -1);
  // The eleven bytes of a possible marker are read, whatever the size of the identifier.
  const Bytes tiny = GifApplication("", Bytes(10, 0));
  CheckRead("marker over the end", kScreen + tiny, "-30 100x80 1");
  CheckRead("marker up to the end", kScreen + tiny + Bytes{0}, "0 100x80 0");
  CheckRead("no marker looked for", GifScreen(1, 1, "GIF87a") + tiny, "0 1x1 0");
}

void CheckWrite(const char* what, const Bytes& picture, std::string_view document,
                const AttrInfo& attr, int32_t status, const Bytes& want = {}) {
  CheckWriter(what, SetXmlStringToGif, picture, document, status, want, attr);
}

const Bytes kOld = GifComment("<emoji>x", 7), kImage = GifImage();
const Bytes kWide = GifScreen(999, 1, "GIF87a"), kNameless = GifApplication("EMJ", {0});
const Bytes kLarge = GifBlob("EMJ2", "large.bin", Bytes(600, 7)), kSmall = GifBlob("EMJ", "s", {});
const AttrInfo kNone = With({});

TEST(GifWriter, ChangesNothingButMetadata) {
  const Bytes foreign = GifComment("12345<emoji>1234", 5) + GifComment("<emoji") + kGifPopMarker +
                        kGifControl + kGifPlainText + Bytes{0x21, 0xCE, 2, 0x3B, 0x2C, 0, 7} +
                        GifApplication("", {}) + GifApplication("EM", GifChain({1}));
  const Bytes blobs = kLarge + kNameless + kSmall, all = blobs + kImage + blobs;
  const AttrInfo keepsLarge = With({{"EMJ", "large", "file://THIS/"}}, 99);
  const AttrInfo keepsAll = With({{"", "", "file://THIS/"}});
  const AttrInfo keepsNone = With({{"", "large", "file://THAT/"}, {"", "l", ""}});
  const auto check = [](const char* what, const Bytes& source, const std::string& document,
                        const AttrInfo& attr, const Bytes& want) {
    CheckWrite(what, kWide + source + kGifEnd, document, attr, 0, kWide + want + kGifEnd);
  };
  check("two images", foreign + kImage + kImage, kText, kNone,
        foreign + kDocument + kImage + kImage);
  check("in place", kOld + foreign + kOld + kImage, kText, kNone, kDocument + foreign + kImage);
  check("before the image", foreign + kImage + kOld + foreign, kText, kNone,
        foreign + kDocument + kImage + foreign);
  check("removed", kOld + foreign + kImage + kOld, "", kNone, foreign + kImage);
  check("no image", foreign, kText, kNone, foreign);
  check("no image, old one", foreign + kOld, kText, kNone, foreign + kDocument);
  check("blobs dropped", all, kText, kNone, kDocument + kImage);
  check("blobs not named", all, kText, keepsNone, kDocument + kImage);
  check("one blob kept", all, kText, keepsLarge, kLarge + kDocument + kImage + kLarge);
  check("all blobs kept", all, "", keepsAll, all);
  check("longest", kImage, Document(10240), kNone, GifComment(Document(10240)) + kImage);
  check("too long, no place", foreign, Document(10241), kNone, foreign);
  CheckWrite("too long", kWide + kOld, Document(10241), kNone, -41);
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
  CheckWrite("in place of the old", kWide + kOld + kSmall + end, kText, attr, 0, want);
  CheckWrite("before the image", kWide + end, kText, attr, 0, want);
  CheckWrite("no document", kWide + end, "", attr, 0, kWide + end);
  // A write removes the metadata of the write before it, except blobs with another label.
  CheckWrite("blobs removed", want, "<emoji>", kNone, 0,
             kWide + GifComment("<emoji>") + other + end);
  CheckWrite("no name", kWide + end, kText, With({{"EMJ", "", some}}), -99);
  CheckWrite("no file", kWide + end, kText, With({{"EMJ", "n", folder.Path("missing")}}), -99);
  // This file claims the size of a page, but is shorter.
  CheckWrite("shorter than its size", kWide + end, kText,
             With({{"EMJ", "n", "/sys/devices/system/cpu/online"}}), -99);
}

}  // namespace
}  // namespace lumigram::test
