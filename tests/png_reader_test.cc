// Documents and dimensions of PNG pictures: bytes in; status, text, width and height out.
#include "tests/support/picture_cases.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

void Check(const std::vector<ReadCase>& cases) {
  for (const ReadCase& c : cases) {
    for (Opened opened : kBothWays)
      CheckRead(GetXmlStringFromPng, c, Stream(c.picture, opened).get());
  }
}

TEST(PngReader, Documents) {
  const Bytes start = PngStart(), end = kPngImage + kPngEnd, doc = PngDocument(Document());
  const Bytes other = PngChunk("tEXt", Text("emoji") + Bytes{0} + Text(Document()));
  Check({
      {"none", start + other + end, 0, ""},
      {"one byte short", start + PngDocument("<emoji>") + doc + end, 0, Document()},
      {"another text", start + PngDocument("<other>b") + doc + end, 0, Document()},
      {"first of two", start + doc + PngDocument("<emoji>b") + end, 0, Document()},
      {"behind the image", start + kPngImage + doc + kPngEnd, 0, Document()},
      {"longest", start + PngDocument(Document(10240)) + end, 0, Document(10240)},
      {"too long", start + PngDocument(Document(10241)) + end, -41, ""},
      {"too long, not a document", start + PngDocument(std::string(10241, 'x')) + end, -41, ""},
      {"empty behind one", start + doc + PngDocument("") + end, -41, Document()},
      {"no end", start + doc + kPngImage, -30, Document()},
  });
}

TEST(PngReader, Damage) {
  const Bytes start = PngStart(), doc = PngDocument(Document());
  const auto text = [](uint32_t size) { return PngChunkClaiming(size, "tEXt", Text("Emojis")); };
  const auto other = [](uint32_t size) { return PngChunkClaiming(size, "abCd", {}); };
  Check({
      {"wrong signature", Patched(start + kPngEnd, 7, {0}), -30, "", 0, 0},
      {"header cut", FirstOf(start, 32), -30, "", 0, 0},
      {"end without CRC", start + FirstOf(kPngEnd, 8), 0, ""},
      {"end cut in its type", start + FirstOf(kPngEnd, 7), -30, ""},
      {"cut in the keyword", start + FirstOf(doc, 8 + 5), -30, ""},
      {"cut in the text", start + FirstOf(doc, 8 + 6 + 7), -99, ""},
      {"cut in the CRC", start + FirstOf(doc, doc.size() - 1), -30, ""},
      {"text to the file's end", start + text(6 + 4), -30, ""},
      {"text over the file's end", start + text(6 + 5), -99, ""},
      {"text shorter than its keyword", start + text(5) + kPngEnd, -99, ""},
      {"chunk over the file's end", start + other(12 + 1) + kPngEnd, -30, ""},
      {"2^31 bytes", start + doc + other(1u << 31) + kPngEnd, -30, Document()},
      {"-4 bytes in 32 bits", start + FirstOf(other(0u - 4), 8) + kPngEnd, -30, ""},
  });
}

TEST(PngReader, DimensionsAndArguments) {
  Check({
      {"largest", PngStart(960, 960) + kPngEnd, 0, "", 960, 960},
      {"too wide", PngStart(961, 1) + kPngEnd, -31, "", 961, 1},
      {"too high", PngStart(1, 961) + kPngEnd, -31, "", 1, 961},
      {"huge", PngStart(1u << 31, 1) + kPngEnd, -31, "", 1u << 31, 1},
  });
  char text[1];
  uint32_t sizes[2];
  EXPECT_EQ(GetXmlStringFromPng(nullptr, text, &sizes[0], &sizes[1]), -99);
  EXPECT_EQ(GetXmlStringFromPng(Stream({0}).get(), nullptr, &sizes[0], &sizes[1]), -99);
  FILE* pipe = popen("true", "r");
  EXPECT_EQ(GetXmlStringFromPng(pipe, text, &sizes[0], &sizes[1]), -99);
  pclose(pipe);
}

}  // namespace
}  // namespace lumigram::test
