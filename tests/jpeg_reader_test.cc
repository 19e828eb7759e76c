// Documents and dimensions of JPEG pictures.
#include <unistd.h>

#include "tests/support/jpeg_builder.h"
#include "tests/support/picture_checks.h"

namespace lumigram::test {
namespace {

// Of a file in both ways, and of a pipe.
void Check(const char* what, const Bytes& picture, int32_t status, std::string_view text = "",
           uint32_t width = 32, uint32_t height = 16) {
  SCOPED_TRACE(what);
  for (Opened opened : kBothWays)
    CheckRead(GetXmlStringFromJpg, Stream(picture, opened).get(), status, text, width, height);
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ASSERT_EQ(write(ends[1], picture.data(), picture.size()), std::ssize(picture));
  close(ends[1]);
  const ScopedFile stream(fdopen(ends[0], "rb"));
  CheckRead(GetXmlStringFromJpg, stream.get(), status, text, width, height);
}

TEST(JpegReader, Documents) {
  const Bytes start = kJpegStart + JpegFrame(), end = kJpegScan + kJpegEnd;
  const Bytes doc = JpegComment(Document());
  Check("none", start + JpegSegment(0xE1, Text(Document())) + end, 0);
  Check("shortest", start + JpegComment("<emoji>") + doc + end, 0, "<emoji>");
  Check("other comments", start + JpegComment("") + JpegComment("<emoji ") + doc + end, 0,
        Document());
  Check("first of two", start + doc + JpegComment("<emoji>b") + end, 0, Document());
  Check("no scan", start + doc + kJpegEnd, 0, Document());
  Check("in the image data", start + kJpegScan + doc + kJpegEnd, 0);
  Check("longest", start + JpegComment(Document(10240)) + end, 0, Document(10240));
  Check("too long", start + JpegComment(Document(10241)) + end, -41);
  Check("too long and cut", start + doc + JpegSegmentClaiming(10243, 0xFE, {}), -41, Document());
  Check("length 1", start + JpegSegmentClaiming(1, 0xFE, {}) + end, -41);
  Check("length 0", start + JpegSegmentClaiming(0, 0xFE, {}) + end, -41);
  Check("cut", start + FirstOf(doc, doc.size() - 1), -30);
}

TEST(JpegReader, FrameHeaders) {
  const Bytes end = kJpegScan + kJpegEnd;
  for (int code : {0xC0, 0xC1, 0xC2, 0xC9, 0xCA})
    Check("a frame", kJpegStart + JpegFrame(32, 16, uint8_t(code)) + end, 0);
  for (int code : {0xC3, 0xC4, 0xC5, 0xC7, 0xC8, 0xCB, 0xCF})
    Check("not a frame", kJpegStart + JpegFrame(32, 16, uint8_t(code)) + end, -21, "", 0, 0);
  Check("none", kJpegStart + kJpegEnd, -21, "", 0, 0);
  Check("largest", kJpegStart + JpegFrame(960, 960) + end, 0, "", 960, 960);
  Check("too wide", kJpegStart + JpegFrame(961, 1) + end, -31, "", 0, 0);
  Check("too high behind one", kJpegStart + JpegFrame() + JpegFrame(1, 961) + end, -31);
  Check("last of two", kJpegStart + JpegFrame() + JpegFrame(2, 3) + end, 0, "", 2, 3);
  Check("shortest", kJpegStart + JpegSegment(0xC0, {8, 0, 1, 0, 2}) + end, 0, "", 2, 1);
  Check("too short", kJpegStart + JpegSegment(0xC0, {8, 0, 1, 0}) + end, -30, "", 0, 0);
  Check("too wide and cut", kJpegStart + FirstOf(JpegFrame(961, 1), 12), -30, "", 0, 0);
}

TEST(JpegReader, MarkersAndEnds) {
  const Bytes start = kJpegStart + JpegFrame(), large = kJpegScan + Bytes(9000, 0x55);
  Check("wrong start", Patched(start + kJpegEnd, 1, {0xD9}), -30, "", 0, 0);
  Check("odd first marker", kJpegStart + Patched(JpegFrame(), 0, {7}) + kJpegEnd, 0);
  Check("odd next marker", start + Patched(kJpegScan, 0, {7}) + kJpegEnd, -30);
  Check("fill byte", start + Bytes{0xFF} + kJpegScan + kJpegEnd, -30);
  Check("length 2", start + JpegSegmentClaiming(2, 0xE0, {}) + kJpegEnd, 0);
  Check("length 1", start + JpegSegmentClaiming(1, 0xE0, {}) + kJpegEnd, -30);
  Check("segment cut", start + JpegSegmentClaiming(5, 0xE0, kJpegEnd), -30);
  Check("end in the scan's segment", start + JpegSegmentClaiming(4, 0xDA, kJpegEnd), -30);
  Check("end half in it", start + JpegSegmentClaiming(3, 0xDA, kJpegEnd), -30);
  Check("large", start + large + kJpegEnd, 0);
  Check("large with a tail", start + large + kJpegEnd + large, 0);
  Check("large and cut", start + large + Bytes{0xFF}, -30);
  char text[1];
  uint32_t sizes[2];
  EXPECT_EQ(GetXmlStringFromJpg(nullptr, text, &sizes[0], &sizes[1]), -99);
  EXPECT_EQ(GetXmlStringFromJpg(Stream({0}).get(), nullptr, &sizes[0], &sizes[1]), -99);
}

}  // namespace
}  // namespace lumigram::test
