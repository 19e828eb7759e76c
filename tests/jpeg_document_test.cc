// Documents and dimensions of JPEG pictures, read and written.
#include "core/jpeg/jpeg_writer.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/picture_checks.h"

namespace lumigram::test {
namespace {

const std::string kText = "<emoji>new";
const Bytes kFrame = JpegFrame(), kEnd = kJpegScan + kJpegEnd;
const Bytes kOld = JpegComment(Document()), kNew = JpegComment(kText);

// Reads a start of image and the given bytes after it.
void CheckRead(const char* what, const Bytes& rest, int32_t status, std::string_view text = "",
               uint32_t width = 0, uint32_t height = 0) {
  CheckReader(what, GetXmlStringFromJpg, kJpegStart + rest, status, text, width, height);
}

void CheckWrite(const char* what, const Bytes& rest, std::string_view doc, int32_t status,
                const Bytes& wantRest = {}) {
  CheckWriter(what, SetXmlStringToJpg, kJpegStart + rest, doc, status, kJpegStart + wantRest);
}

// Reads and writes a picture with a frame header before the given bytes; kText is the new document.
void Check(const char* what, const Bytes& rest, int32_t readStatus, std::string_view text,
           int32_t writeStatus, const Bytes& wantRest = {}) {
  CheckRead(what, kFrame + rest, readStatus, text, 32, 16);
  CheckWrite(what, kFrame + rest, kText, writeStatus, kFrame + wantRest);
}

TEST(JpegDocument, Comments) {
  const Bytes others = JpegComment("<emoji .") + JpegComment("<emoji") + JpegComment("");
  const auto claim = [](uint32_t length) {
    return kOld + JpegSegmentClaiming(length, 0xFE, Text(Document())) + kEnd;
  };
  Check("none", others + kEnd, 0, "", 0, others + kNew + kEnd);
  Check("no scan", others + kJpegEnd, 0, "", 0, others + kJpegEnd);
  Check("shortest", JpegComment("<emoji>") + kEnd, 0, "<emoji>", 0, kNew + kEnd);
  Check("first of two", kOld + others + kNew + kEnd, 0, Document(), 0, kNew + others + kEnd);
  Check("longest", JpegComment(Document(10240)) + kEnd, 0, Document(10240), 0, kNew + kEnd);
  Check("too long", kOld + JpegComment(Document(10241)) + kEnd, -41, Document(), 0, kNew + kEnd);
  Check("too long and cut", claim(2 + 10241), -41, Document(), -30);
  Check("length 1", claim(1), -41, Document(), -30);
  Check("length 0", claim(0), -41, Document(), -30);
}

TEST(JpegDocument, MarkersAndEnds) {
  const Bytes large = kJpegScan + Bytes(9000, 0x55);
  const auto claim = [](uint32_t length, uint8_t code) {
    return JpegSegmentClaiming(length, code, {}) + kJpegEnd;
  };
  Check("after the scan", kEnd + kOld + kJpegEnd, 0, "", 0, kNew + kEnd);
  Check("large with a tail", large + kJpegEnd + large, 0, "", 0, kNew + large + kJpegEnd);
  Check("large and cut", large + Bytes{0xFF}, -30, "", -30);
  Check("odd marker", Patched(kEnd, 0, {7}), -30, "", -30);
  Check("fill byte", Bytes{0xFF} + kEnd, -30, "", -30);
  Check("length 2", claim(2, 0xE0), 0, "", 0, claim(2, 0xE0));
  Check("length 1", claim(1, 0xE0), -30, "", -30);
  Check("half of the end taken", claim(3, 0xDA), -30, "", -30);
  Check("the end taken", claim(4, 0xDA), -30, "", -30);
}

TEST(JpegDocument, FrameHeaders) {
  for (int code : {0xC0, 0xC1, 0xC2, 0xC9, 0xCA})
    CheckRead("a frame", JpegFrame(32, 16, uint8_t(code)) + kEnd, 0, "", 32, 16);
  for (int code : {0xC3, 0xC4, 0xC5, 0xC7, 0xC8, 0xCB, 0xCF})
    CheckRead("not a frame", JpegFrame(32, 16, uint8_t(code)) + kEnd, -21);
  CheckRead("largest", JpegFrame(960, 960) + kEnd, 0, "", 960, 960);
  CheckRead("too wide", JpegFrame(961, 1) + kEnd, -31);
  CheckRead("too high after another", kFrame + JpegFrame(1, 961) + kEnd, -31, "", 32, 16);
  CheckRead("shortest, last", kFrame + JpegSegment(0xC0, {8, 0, 1, 0, 2}) + kEnd, 0, "", 2, 1);
  CheckRead("too short", JpegSegment(0xC0, {8, 0, 1, 0}) + kEnd, -30);
  CheckRead("too wide and cut", FirstOf(JpegFrame(961, 1), 12), -30);
  CheckWrite("any", JpegFrame(961, 1) + kEnd, "", 0, JpegFrame(961, 1) + kEnd);
}

TEST(JpegDocument, OddFirstByte) {
  const Bytes oddOld = Patched(kOld, 0, {7}), oddNew = Patched(kNew, 0, {7});
  CheckRead("frame", Patched(kFrame, 0, {7}) + kEnd, 0, "", 32, 16);
  CheckWrite("replaced", oddOld + kEnd, kText, 0, oddNew + kEnd);
  CheckWrite("scan", Patched(kEnd, 0, {7}), kText, 0, oddNew + kEnd);
}

TEST(JpegDocument, Limits) {
  CheckWrite("longest old one", JpegComment(Document(65533)) + kEnd, "", 0, kEnd);
  CheckWrite("longest", kEnd, Document(10240), 0, JpegComment(Document(10240)) + kEnd);
  CheckWrite("too long", kEnd, Document(10241), -41);
  CheckWrite("too long in place", kOld + kEnd, Document(10241), -41);
}

}  // namespace
}  // namespace lumigram::test
