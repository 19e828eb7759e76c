// New documents in JPEG pictures.
#include "core/jpeg/jpeg_writer.h"

#include "tests/support/jpeg_builder.h"
#include "tests/support/picture_checks.h"

namespace lumigram::test {
namespace {

const Bytes kEnd = kJpegScan + kJpegEnd, kFrame = JpegFrame(961, 961), kOdd = {7};

void Check(const char* what, const Bytes& picture, std::string_view doc, int32_t status,
           const Bytes& want = {}) {
  SCOPED_TRACE(what);
  const XmlStringInfo record = Record(doc);
  const auto write = [&](FILE* stream, uint8_t* out, uint32_t* outLength, uint32_t capacity) {
    return SetXmlStringToJpg(stream, &record, out, outLength, capacity);
  };
  CheckWrite(write, kJpegStart + picture, status, kJpegStart + want);
}

TEST(JpegWriter, Documents) {
  const Bytes doc = JpegComment("<emoji>new"), old = JpegComment("<emoji>");
  const Bytes oddDoc = Patched(doc, 0, kOdd), oddOld = Patched(old, 0, kOdd);
  const Bytes kept = JpegComment("") + JpegComment("<emoji") + JpegComment("<emoji .");
  const Bytes large = kJpegScan + Bytes(9000, 0x55) + kJpegEnd;
  Check("inserted", kept + kFrame + kEnd, "<emoji>new", 0, kept + kFrame + doc + kEnd);
  Check("in place", old + kFrame + old + kEnd, "<emoji>new", 0, doc + kFrame + kEnd);
  Check("removed", oddOld + kFrame + old + kEnd, "", 0, kFrame + kEnd);
  Check("a tail", old + large + large, "<emoji>new", 0, doc + large);
  Check("no scan", kFrame + kJpegEnd, "<emoji>new", 0, kFrame + kJpegEnd);
  Check("odd before old", oddOld + kEnd, "<emoji>new", 0, oddDoc + kEnd);
  Check("odd before scan", Patched(kEnd, 0, kOdd), "<emoji>new", 0, oddDoc + kEnd);
  Check("odd before end", Patched(kJpegEnd, 0, kOdd), "", 0, Patched(kJpegEnd, 0, kOdd));
  Check("longest old", JpegComment(Document(65533)) + kEnd, "<emoji>new", 0, doc + kEnd);
  Check("longest", kEnd, Document(10240), 0, JpegComment(Document(10240)) + kEnd);
  Check("too long", kEnd, Document(10241), -41);
  Check("too long in place", old + kEnd, Document(10241), -41);
}

TEST(JpegWriter, Damage) {
  for (int code : {0xFE, 0xE0, 0xDA}) {
    const auto claim = [&](uint32_t length) {
      return JpegSegmentClaiming(length, uint8_t(code), Text(Document())) + kJpegEnd;
    };
    Check("length 0", claim(0), "", -30);
    Check("length 1", claim(1), "", -30);
    Check("to the end", claim(2 + 8 + 2), "", -30);
    Check("over the end", claim(2 + 8 + 3), "", -30);
    const XmlStringInfo none = Record("");
    uint8_t out[2];
    uint32_t n;
    const ScopedFile stream = Stream(kJpegStart + claim(0xFFFF));
    EXPECT_EQ(SetXmlStringToJpg(stream.get(), &none, out, &n, 2), -30) << "rather than no room";
  }
  Check("no marker", {0xFF}, "", -30);
  Check("odd next marker", kFrame + Patched(kEnd, 0, kOdd), "", -30);
  Check("no end", FirstOf(kEnd, kEnd.size() - 1), "", -30);
}

TEST(JpegWriter, Arguments) {
  const ScopedFile stream = Stream(Patched(kJpegStart, 0, kOdd) + kEnd);
  XmlStringInfo doc = Record(Document());
  uint8_t out[99];
  uint32_t n = 7;
  for (int null = 0; null < 4; ++null) {
    EXPECT_EQ(SetXmlStringToJpg(null == 0 ? nullptr : stream.get(), null == 1 ? nullptr : &doc,
                                null == 2 ? nullptr : out, null == 3 ? nullptr : &n, 99),
              -99);
  }
  EXPECT_EQ(SetXmlStringToJpg(stream.get(), &doc, out, &n, 99), -30) << "wrong signature";
  EXPECT_EQ(SetCommentSegmentToJpg(nullptr, &n, out, 99), -99);
  EXPECT_EQ(SetCommentSegmentToJpg(&doc, nullptr, out, 99), -99);
  EXPECT_EQ(SetCommentSegmentToJpg(&doc, &n, nullptr, 99), -99);
  doc.length = -1;
  EXPECT_EQ(SetCommentSegmentToJpg(&doc, &n, out, 99), -99);
}

}  // namespace
}  // namespace lumigram::test
