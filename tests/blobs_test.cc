// The blobs of GIF and PNG pictures: what they take of the file, and their bytes.
#include <gtest/gtest.h>

#include "lumigram.h"
#include "tests/support/gif_builder.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

using Measure = decltype(&GetSizeApplicationExtensionFromGif);
using Copy = decltype(&GetApplicationExtensionDataFromGif);

// With the wanted "status size, status bytes"; without a label, nothing is copied.
struct Case {
  Bytes picture;
  const char *label, *name;
  std::string want;
};

// The size query and the copy, on a picture behind three odd bytes.
std::string Find(Measure measure, Copy copy, const Case& c, Opened opened) {
  const ScopedFile stream = Stream(Bytes(3, 0x3B) + c.picture, opened);
  fseek(stream.get(), 3, SEEK_SET);
  uint32_t size = 77, length = 77;
  const int32_t sized = measure(stream.get(), &size, c.name);
  EXPECT_TRUE(sized != 0 || ftell(stream.get()) == 3) << "the writer reads on from there";
  const std::string result = std::to_string(sized) + " " + std::to_string(size) + ", ";
  if (c.label == nullptr) return result;
  fseek(stream.get(), 3, SEEK_SET);
  Bytes data(c.picture.size() + 1);
  const int32_t copied = copy(stream.get(), data.data(), &length, c.label, c.name);
  EXPECT_EQ(Bytes(data.begin() + length, data.end()), Bytes(data.size() - length)) << "no more";
  return result + std::to_string(copied) + " " + std::string(&data[0], &data[length]);
}

void Check(Measure measure, Copy copy, const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    for (Opened opened : kBothWays)
      EXPECT_EQ(Find(measure, copy, c, opened), c.want) << "case " << &c - cases.data();
  }
}

const std::string kLong = Document(600), kShort(40, 's'), kLonger(12290, 'x');
const Bytes kShortBlob = GifBlob("EMJLABEL001", "a.bin", Text(kShort));
const Bytes kLongBlob = GifBlob("EMJ2", "abc.bin", Text(kLong));
const Bytes kNameless = GifApplication("EMJ", {0}), kNoIdentifier = GifApplication("", {});
const Bytes kStart = GifScreen(960, 960), kEnd = GifImage(961, 961) + kGifEnd;
const Bytes kBlobs = kNoIdentifier + kShortBlob + GifComment("EMJ") +
                     GifApplication("EM", GifChain({1, 2, 3})) + kLongBlob + kEnd;

TEST(GifBlobs, AreFound) {
  const Bytes twoSubBlocks = GifApplication("HTMLEMJI1.0", {1, 'n', 2, 'x', 'y', 1, 'z', 0});
  const char* const longer = kLonger.c_str();
  const std::vector<Case> cases = {
      {kStart + twoSubBlocks + kEnd, nullptr, nullptr, "0 0, "},
      {kStart + kBlobs, nullptr, nullptr, "0 688, "},
      {kStart + kBlobs, "EMJLABEL001", "a.bin", "0 62, 0 " + kShort},
      {kStart + kBlobs, "EMJ", "abc", "0 626, 0 " + kLong},
      {kStart + kBlobs, "EMJ2", "a", "0 62, 0 " + kLong},
      {kStart + kBlobs, "EMJ3", "abc.bin.", "0 0, 0 "},
      {kStart + twoSubBlocks + kBlobs, "", "", "0 62, 0 xyz"},
      {kStart + GifBlob("EMJ", "n", {}) + kEnd, "EMJ", "n", "0 17, 0 "},
      // The head counts as 14 bytes, also when the identifier is short.
      {kStart + GifApplication("EMJ", GifChain({1, 2, 3})) + kEnd, nullptr, nullptr, "0 19, "},
      // A label longer than the identifier is compared with what follows.
      {kStart + kBlobs, "EMJLABEL001\5a.bin(ss", "a.bin", "0 62, 0 " + kShort},
      {kStart + kBlobs, "EMJLABEL001\5a.bin)ss", "a.bin", "0 62, 0 "},
      // An empty name is without data, and the file goes on behind it.
      {kStart + kNameless + kShortBlob + kEnd, "EMJ", "", "0 15, 0 "},
      {kStart + kNameless + kShortBlob + kEnd, "EMJ", "a", "0 62, 0 " + kShort},
      {kStart + kNoIdentifier + Bytes{7}, "", "", "0 0, 0 "},
      {kStart + kNoIdentifier + Bytes{7}, "EM", "", "0 0, -30 "},
      // A truncated picture never counts for more than it has.
      {kStart + FirstOf(kLongBlob, 600), nullptr, nullptr, "-30 535, "},
      {kStart + FirstOf(kLongBlob, 600), "EMJ", "", "-30 535, -30 " + kLong.substr(0, 510)},
      {kStart + FirstOf(kLongBlob, 18), "EMJ", "", "-30 0, -30 "},
      {FirstOf(kStart, 12), "EMJ", "", "-30 0, -30 "},
      {GifScreen(961, 1) + kBlobs, "EMJ", "a", "0 62, -31 "},
      {GifScreen(1, 961) + kBlobs, "EMJ", "a", "0 62, -31 "},
      // Nothing longer than 12,289 bytes is looked for.
      {kStart + kBlobs + Bytes(12289, 0), longer + 1, longer + 1, "0 0, 0 "},
      {kStart + kBlobs + Bytes(12289, 0), longer, "a", "0 62, -99 "},
      {kStart + kBlobs + Bytes(12289, 0), "EMJ", longer, "-99 0, -99 "},
  };
  Check(GetSizeApplicationExtensionFromGif, GetApplicationExtensionDataFromGif, cases);
}

const std::string kLarge(70000, 'x');
const Bytes kHead = PngStart(), kOne = PngBlob("EMJBLOB-1.0", "one.bin", Text("one"));
const Bytes kForeign = PngBlob("EMI12345678", "two", {'4'});
const Bytes kAll =
    kHead + kOne + kForeign + kPngImage + PngBlob("EMJBLOB-1.0", "two", Text(kLarge)) + kPngEnd;

TEST(PngBlobs, ByNameAndLabel) {
  const std::string longest(65536, 'n'), longer(65537, 'n'),
      other = std::string("m").append(longest, 1);
  const Bytes longNamed = kHead + PngBlob("EMJBLOB-1.0", longest + longest, {'d'});
  Check(GetSizeApplicationExtensionFromPng, GetApplicationExtensionDataFromPng,
        {
            {kAll, nullptr, nullptr, "0 70075, "},
            {FirstOf(kAll, kAll.size() - 13), nullptr, nullptr, "-30 70075, "},
            {kAll, "EMJ", "", "0 41, 0 one"},
            {kAll, "EMJBLOB-1.0", "one", "0 41, 0 one"},
            {kAll, "EMJ", "two", "0 70034, 0 " + kLarge},
            {kAll, "EMJ", "one.bin.", "0 0, 0 "},
            {kAll, "", "two", "0 70034, 0 4"},
            {kAll, "EMJ0", "one", "0 41, 0 "},
            {kAll, "EMJBLOB-1.0x", "one", "0 41, 0 "},
            {kAll, longer.c_str(), "one", "0 41, -99 "},
            {longNamed, "EMJ", longest.c_str(), "0 131104, 0 d"},
            {longNamed, "EMJ", other.c_str(), "-30 0, -30 "},
            {longNamed, "EMJ", longer.c_str(), "-99 0, -99 "},
        });
}

TEST(PngBlobs, Damage) {
  const auto claim = [&](uint32_t nameLength, uint32_t dataLength) {
    return kHead + Patched(Patched(kOne, 8 + 11, Be32(nameLength)), 8 + 15 + 7, Be32(dataLength));
  };
  const std::string crc(kOne.end() - 4, kOne.end());
  Check(GetSizeApplicationExtensionFromPng, GetApplicationExtensionDataFromPng,
        {
            {kHead + PngChunk("emJe", Text("EM")), "EMJ", "", "-30 0, -30 "},
            {kHead + FirstOf(kOne, 8 + 15 + 6), "EMJ", "one.bin", "-30 0, -30 "},
            {kHead + kForeign, "EMJ", "two", "-30 0, -30 "},
            {kHead + kPngHuge + kPngEnd, "EMJ", "one", "-30 0, -30 "},
            {Patched(kAll, 0, {7}), "EMJ", "one", "0 41, -30 "},
            {FirstOf(kHead, 32), "EMJ", "one", "-30 0, -30 "},
            {PngStart(960, 960) + kOne, "EMJ", "", "0 41, 0 one"},
            {PngStart(961, 1) + kOne, "EMJ", "", "0 41, -31 "},
            {PngStart(1, 961) + kOne, "EMJ", "", "0 41, -31 "},
            // The lengths as stored: of the name, which may be too short or more than the
            // file, and of the data, up to the file's end and over it.
            {claim(0, 3), "EMJ", "one.bin", "0 41, 0 one"},
            {claim(UINT32_MAX, 3), "EMJ", "one.bin", "0 41, -30 "},
            {claim(7, 3 + 4), "EMJ", "one", "0 41, 0 one" + crc},
            {claim(7, 3 + 5), "EMJ", "one", "0 41, -99 "},
        });
}

}  // namespace
}  // namespace lumigram::test
