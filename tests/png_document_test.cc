// Documents and dimensions of PNG pictures, read and written, and new blobs.
#include "core/png/png_writer.h"
#include "tests/support/picture_checks.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

const std::string kText = "<emoji>new", kLabel = "EMJBLOB-1.0";
const Bytes kStart = PngStart(), kEnd = kPngImage + kPngEnd, kData(300, 5);
const Bytes kOld = PngDocument(Document()),
            kEmpty = PngBlob(std::string("EMJ") + std::string(8, '\0'), "", {});
const Bytes kBlobs = PngBlob(kLabel, "a.bin", kData) + kEmpty, kNew = PngDocument(kText) + kBlobs;
const TempFolder kFolder;

// Adds two blobs, with a label that is too long and one that is too short, and keeps one.
AttrInfo Blobs(const std::string& path) {
  return With({{kLabel + "cut", "a.bin", path},
               {"EMJ", "", kFolder.Write("empty", {})},
               {"", "keep", "file://THIS/keep"}},
              97);
}
const AttrInfo kRecord = Blobs(kFolder.Write("a.bin", kData));

void CheckRead(const char* what, const Bytes& picture, int32_t status, std::string_view text,
               uint32_t width, uint32_t height) {
  CheckReader(what, GetXmlStringFromPng, picture, status, text, width, height);
}

void CheckWrite(const char* what, const Bytes& rest, const std::string& doc, int32_t status,
                const Bytes& wantRest = {}, const AttrInfo& record = kRecord) {
  CheckWriter(what, SetXmlStringToPng, kStart + rest, doc, status, kStart + wantRest, record);
}

// Reads kStart and the given bytes after it, and writes a new document and a new blob into it.
void Check(const char* what, const Bytes& rest, int32_t readStatus, std::string_view text,
           int32_t writeStatus, const Bytes& wantRest = {}) {
  CheckRead(what, kStart + rest, readStatus, text, 32, 16);
  CheckWrite(what, rest, kText, writeStatus, wantRest);
}

TEST(PngDocument, Texts) {
  const Bytes kept =
      PngChunk("tEXt", Text("emoji, other")) + PngDocument("<emoji>") + PngDocument("<other>b");
  const Bytes tooLong = PngDocument(std::string(10241, 'x')), empty = PngDocument("");
  Check("none", kept + kPngImage + kEnd, 0, "", 0, kept + kNew + kPngImage + kEnd);
  Check("first of two", kept + kOld + kept + PngDocument("<emoji>b") + kEnd, 0, Document(), 0,
        kept + kNew + kept + kEnd);
  Check("after the image", kPngImage + kOld + kPngEnd, 0, Document(), 0, kNew + kEnd);
  Check("no image", kPngEnd, 0, "", 0, kPngEnd);
  Check("longest", PngDocument(Document(10240)) + kEnd, 0, Document(10240), 0, kNew + kEnd);
  Check("too long", PngDocument(Document(10241)) + kEnd, -41, "", 0, kNew + kEnd);
  Check("other too long", kOld + tooLong + kEnd, -41, Document(), 0, kNew + tooLong + kEnd);
  Check("empty", kOld + empty + kEnd, -41, Document(), 0, kNew + empty + kEnd);
}

TEST(PngDocument, DamageAndDimensions) {
  const auto other = [](uint32_t size) { return PngChunkClaiming(size, "abCd", {}); };
  const Bytes shorter = PngChunk("tEXt", Text("Emoji"));
  Check("text cut in its keyword", PngChunk("tEXt", {1}), -30, "", -30);
  Check("text shorter than that", shorter + kPngEnd, -99, "", 0, shorter + kPngEnd);
  Check("data and CRC 0 in 32 bits", kPngHuge + kPngEnd, -30, "", -99);
  Check("the whole chunk 0 in 32 bits", other(0u - 12) + kPngEnd, -30, "", -99);
  CheckRead("signature", Patched(kStart + kEnd, 7, {0}), -30, "", 0, 0);
  CheckRead("largest", PngStart(960, 960) + kPngEnd, 0, "", 960, 960);
  CheckRead("too wide", PngStart(961, 1) + kPngEnd, -31, "", 961, 1);
  CheckRead("too high", PngStart(1, 961) + kPngEnd, -31, "", 1, 961);
}

TEST(PngDocument, Blobs) {
  const Bytes keep = PngBlob(kLabel, "keep.old", kData) + PngBlob(kLabel, "keep", {});
  const Bytes foreign = PngBlob("EMI12345678", "keep", {});
  const Bytes drop = foreign + PngBlob(kLabel, "kee", {}) + PngBlob(kLabel, "a.bin", {});
  const auto named = [](uint32_t length, const std::string& name) {
    return PngChunk("emJe", Text(kLabel) + Be32(length) + Text(name)) + kPngEnd;
  };
  const std::string longest = "keep" + std::string(65533, '.');
  Check("kept", keep + drop + kPngImage + drop + keep + kPngEnd + keep, 0, "", 0,
        keep + kNew + kPngImage + keep + kPngEnd);
  CheckWrite("removed", kOld + keep + drop + kEnd, "", 0, keep + kEnd);
  CheckWrite("label cut", PngChunk("emJe", Text("EMJ")), "", -30);
  CheckWrite("name to the file's end", named(4 + 12, ""), "", 0, kPngEnd);
  CheckWrite("name over the file's end", named(4 + 13, ""), "", -99);
  CheckWrite("longest name", named(65537, longest), "", 0, named(65537, longest));
  CheckWrite("name too long", named(65538, longest + "."), "", -99);
  for (const char* path : {"missing", ""}) {
    const AttrInfo record = Blobs(kFolder.Path(path));
    CheckWrite(path, kEnd, kText, -99, {}, record);
  }
}

TEST(PngDocument, Limits) {
  const AttrInfo none = {};
  const Bytes longest = PngDocument(Document(10234)), noSignature = Patched(kStart + kEnd, 0, {7});
  CheckWrite("longest", kEnd, Document(10234), 0, longest + kBlobs + kEnd);
  CheckWrite("too long", kEnd, Document(10235), -41, {}, none);
  CheckWriter("signature", SetXmlStringToPng, noSignature, "", -30, {}, none);
}

}  // namespace
}  // namespace lumigram::test
