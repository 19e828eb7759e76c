// New documents and blobs in GIF pictures.
#include "core/gif/gif_writer.h"

#include "tests/support/gif_builder.h"
#include "tests/support/picture_checks.h"

namespace lumigram::test {
namespace {

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

void Check(const Bytes& picture, std::string_view document, const AttrInfo& attr, int32_t status,
           const Bytes& want = {}) {
  const auto write = [&](ByteSource& source, const XmlStringInfo* doc, uint8_t* out,
                         uint32_t* outLength, uint32_t capacity) {
    return SetXmlStringToGif(source, doc, out, outLength, &attr, capacity);
  };
  CheckWriter(write, picture, document, status, want);
}

const std::string kText = Document(300);
const Bytes kDocument = GifComment(kText), kOld = GifComment("<emoji>x", 7), kImage = GifImage();
const Bytes kScreen = GifScreen(999, 1, "GIF87a"), kNameless = GifApplication("EMJ", {0});
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
    Check(kScreen + c.source + kGifEnd, c.document, c.attr, 0, kScreen + c.want + kGifEnd);
  }
  Check(kScreen + kOld, Document(10241), kNone, -41);
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
  const Bytes want = kScreen + kDocument + GifBlob("EMJLABEL001", "some", data) +
                     GifBlob("EMJ", std::string(255, 'n'), {}) + other + end;
  Check(kScreen + kOld + kSmall + end, kText, attr, 0, want);
  Check(kScreen + end, kText, attr, 0, want);
  Check(kScreen + end, "", attr, 0, kScreen + end);
  // What a write has added, the next one takes away, but for what does not look like ours.
  Check(want, "<emoji>", kNone, 0, kScreen + GifComment("<emoji>") + other + end);
  Check(kScreen + end, kText, With({{"EMJ", "", some}}), -99);
  Check(kScreen + end, kText, With({{"EMJ", "n", folder.Path("missing")}}), -99);
  // Its size is that of a page, whatever it has.
  Check(kScreen + end, kText, With({{"EMJ", "n", "/sys/devices/system/cpu/online"}}), -99);
}

TEST(GifWriter, Damage) {
  const Bytes start = kScreen + kOld + GifComment("other") + kImage;
  const Bytes whole = start + kLarge;
  for (size_t n = 0; n <= whole.size(); ++n) {
    const bool cutsLabel = n >= start.size() + 3 && n < start.size() + 14;
    SCOPED_TRACE(n);
    Check(FirstOf(whole, n), kText, kNone, cutsLabel ? -99 : -30);
  }
  const XmlStringInfo none = {};
  uint8_t out;
  uint32_t n;
  const ScopedFile stream = Stream(start);
  ByteSource source(stream.get());
  ASSERT_TRUE(source.Measure());
  EXPECT_EQ(SetXmlStringToGif(source, &none, &out, &n, nullptr, 1), -99);
}

}  // namespace
}  // namespace lumigram::test
