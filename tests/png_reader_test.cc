// Documents and dimensions of PNG pictures.
#include "tests/support/picture_checks.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

void Check(const char* what, const Bytes& picture, int32_t status, std::string_view text = "",
           uint32_t width = 32, uint32_t height = 16) {
  SCOPED_TRACE(what);
  for (Opened opened : kBothWays)
    CheckRead(GetXmlStringFromPng, Stream(picture, opened).get(), status, text, width, height);
}

TEST(PngReader, Documents) {
  const Bytes start = PngStart(), end = kPngImage + kPngEnd, doc = PngDocument(Document());
  const Bytes other = PngChunk("tEXt", Text("emoji") + Bytes{0} + Text(Document()));
  Check("none", start + other + end, 0);
  Check("one byte short", start + PngDocument("<emoji>") + doc + end, 0, Document());
  Check("another text", start + PngDocument("<other>b") + doc + end, 0, Document());
  Check("first of two", start + doc + PngDocument("<emoji>b") + end, 0, Document());
  Check("behind the image", start + kPngImage + doc + kPngEnd, 0, Document());
  Check("longest", start + PngDocument(Document(10240)) + end, 0, Document(10240));
  Check("too long", start + PngDocument(Document(10241)) + end, -41);
  Check("no document", start + doc + PngDocument(std::string(10241, 'x')), -41, Document());
  Check("empty behind one", start + doc + PngDocument("") + end, -41, Document());
  Check("no end", start + doc + kPngImage, -30, Document());
}

TEST(PngReader, Damage) {
  const Bytes start = PngStart(), doc = PngDocument(Document());
  const auto text = [](uint32_t size) { return PngChunkClaiming(size, "tEXt", Text("Emojis")); };
  Check("signature", Patched(start + kPngEnd, 7, {0}), -30, "", 0, 0);
  Check("header cut", FirstOf(start, 32), -30, "", 0, 0);
  Check("end without CRC", start + FirstOf(kPngEnd, 8), 0);
  Check("end cut in its type", start + FirstOf(kPngEnd, 7), -30);
  Check("cut in the keyword", start + FirstOf(doc, 8 + 5), -30);
  Check("cut in the text", start + FirstOf(doc, 8 + 6 + 7), -99);
  Check("cut in the CRC", start + FirstOf(doc, doc.size() - 1), -30);
  Check("text to the file's end", start + text(6 + 4), -30);
  Check("text over the file's end", start + text(6 + 5), -99);
  Check("text shorter than its keyword", start + text(5) + kPngEnd, -99);
  Check("chunk over the file's end", start + PngChunkClaiming(13, "abCd", {}) + kPngEnd, -30);
  Check("2^31 bytes", start + doc + PngChunkClaiming(1u << 31, "abCd", {}), -30, Document());
  Check("-4 bytes in 32 bits", start + kPngHuge + kPngEnd, -30);
}

TEST(PngReader, DimensionsAndArguments) {
  Check("largest", PngStart(960, 960) + kPngEnd, 0, "", 960, 960);
  Check("too wide", PngStart(961, 1) + kPngEnd, -31, "", 961, 1);
  Check("too high", PngStart(1, 961) + kPngEnd, -31, "", 1, 961);
  Check("huge", PngStart(1u << 31, 1) + kPngEnd, -31, "", 1u << 31, 1);
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
