// Document, dimensions and pop flag of GIF pictures.
#include "tests/support/gif_builder.h"
#include "tests/support/picture_checks.h"

namespace lumigram::test {
namespace {

// What the reader answers and stores: "status widthxheight pop document".
std::string Result(int32_t status, int32_t width, int32_t height, int32_t pop,
                   std::string_view document = "") {
  return std::to_string(status) + " " + std::to_string(width) + "x" + std::to_string(height) + " " +
         std::to_string(pop) + " " + std::string(document);
}

std::string Read(const Bytes& gif) {
  std::string results[2];
  for (Opened opened : kBothWays) {
    std::string buffer(kLumigramDocumentBufferBytes, '\0');
    int32_t height = 0, width = 0, pop = 0;
    const int32_t status =
        GetXmlStringFromGif(Stream(gif, opened).get(), buffer.data(), &height, &width, &pop);
    results[int(opened)] = Result(status, width, height, pop, buffer.c_str());
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
    EXPECT_EQ(Read(GifScreen(100, 80, "GIF87a") + c.blocks),
              Result(c.status, 100, 80, 0, c.document))
        << "case " << &c - cases;
  }
}

TEST(GifReader, Dimensions) {
  EXPECT_EQ(Read(kScreen + GifImage(120, 40) + GifImage(60, 90) + kGifEnd), Result(0, 120, 90, 0));
  const Bytes image = GifImage(960, 960, 0x87), screen = GifScreen(960, 960, "GIF89a", 0x87);
  EXPECT_EQ(Read(screen + image + kGifEnd), Result(0, 960, 960, 0));
  EXPECT_EQ(Read(GifScreen(961, 5)), Result(-31, 961, 5, 1));
  EXPECT_EQ(Read(GifScreen(5, 961)), Result(-31, 5, 961, 1));
  EXPECT_EQ(Read(kScreen + GifImage(961, 200) + kGifEnd), Result(-31, 100, 80, 1));
  EXPECT_EQ(Read(kScreen + GifImage(200, 961) + kGifEnd), Result(-31, 100, 80, 1));
  const Bytes header = GifScreen(7, 8, "GIF89a", 0x07);
  EXPECT_EQ(Read(FirstOf(header, 5)), Result(-30, 0, 0, 0));
  EXPECT_EQ(Read(FirstOf(header, 12)), Result(-30, 0, 0, 1));
  EXPECT_EQ(Read(header), Result(-30, 7, 8, 1));
}

TEST(GifReader, PopFlag) {
  const Bytes bad = GifComment("Creator=a b\r\nEmojiID=1");
  const struct {
    Bytes blocks;
    int32_t pop;
  } cases[] = {
      {GifApplication("NETSCAPE2.0", GifChain({1, 0, 0})) + kGifPopMarker, 1},
      {GifApplication("HTMLEMJI1.1", GifChain({1})), 0},
      {GifApplication("HTMLEMJI1.0", GifChain({})), 0},
      {Bytes{0x21, 0xFF, 0} + Text("HTMLEMJI1.0") + GifChain({1}), 1},
      {bad + kGifPopMarker + GifComment("creator="), 1},
      {kGifPopMarker + GifComment("Creator=a\r\nEmojiID=az.AZ_09-"), 1},
      {kGifPopMarker + GifComment("Creator=a\r\n\r\n \xFF EmojiID EmojiID=b"), 1},
      {kGifPopMarker + bad + kGifPopMarker + GifComment("Creator=a\r\nEmojiID=b"), 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Read(kScreen + c.blocks + kEnd), Result(0, 100, 80, c.pop)) << &c - cases;
    EXPECT_EQ(Read(GifScreen(1, 1, "GIF89b") + c.blocks + kEnd), Result(0, 40, 30, 0));
  }
  for (const char* text :
       {"", "a", "\r\nEmojiID=b", "a\nEmojiID=b", "a\rEmojiID=b", "a b\r\nEmojiID=b",
        "a\r\nEmojiId=b", "a\r\nEmojiID=", "a\r\nEmojiID=b\r\n", "a\r\nEmojiID=\xC3\xA9"}) {
    const Bytes creator = GifComment("Creator=" + std::string(text));
    EXPECT_EQ(Read(kScreen + kGifPopMarker + creator + kEnd), Result(0, 100, 80, 0)) << text;
  }
  // Where the marker could be, its eleven bytes are looked at, whatever the block's size.
  const Bytes tiny = GifApplication("", Bytes(10, 0));
  EXPECT_EQ(Read(kScreen + tiny), Result(-30, 100, 80, 1));
  EXPECT_EQ(Read(kScreen + tiny + Bytes{0}), Result(0, 100, 80, 0));
  EXPECT_EQ(Read(GifScreen(1, 1, "GIF87a") + tiny), Result(0, 1, 1, 0));
}

TEST(GifReader, EveryTruncation) {
  const Bytes blocks[] = {kScreen + kGifPopMarker, kGifControl, kDocument + kGifEnd};
  const Bytes whole = blocks[0] + blocks[1] + blocks[2];
  for (size_t n = 0; n < whole.size(); ++n) {
    // One byte more than a block, whatever it is, is taken for the trailer.
    const bool ends = n == blocks[0].size() + 1 || n == blocks[0].size() + blocks[1].size() + 1;
    EXPECT_EQ(Read(FirstOf(whole, n)).substr(0, 2), ends ? "0 " : "-3") << n;
  }
}

TEST(GifReader, Helpers) {
  char c;
  int32_t n;
  EXPECT_EQ(GetXmlStringFromGif(nullptr, &c, &n, &n, &n), -99);
  EXPECT_EQ(GetXmlStringFromGif(Stream(kScreen).get(), nullptr, &n, &n, &n), -99);
  const std::string accepted = ".-_0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  for (int byte = -1; byte < 260; ++byte) {
    const bool is = byte < 128 && accepted.find(char(byte)) != std::string::npos;
    EXPECT_EQ(IsAcceptPopCommentData(byte), is ? 0 : -1) << byte;
  }
  EXPECT_EQ(GetSizeColorTable(0x7F), 0u);
  EXPECT_EQ(GetSizeColorTable(0xF3), 48u);
}

}  // namespace
}  // namespace lumigram::test
