// The blobs of GIF and PNG pictures: their sizes in the file, and their bytes.
#include <gtest/gtest.h>

#include "lumigram.h"
#include "tests/support/gif_builder.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

// Wants "status size, status bytes" of the size query and the copy. The picture begins at byte 3.
void Check(const char* what, const Bytes& picture, const char* label, const char* name,
           const std::string& want) {
  SCOPED_TRACE(what);
  const bool isGif = picture[0] == 'G';
  const auto measure =
      isGif ? GetSizeApplicationExtensionFromGif : GetSizeApplicationExtensionFromPng;
  const auto copy = isGif ? GetApplicationExtensionDataFromGif : GetApplicationExtensionDataFromPng;
  for (Opened opened : kBothWays) {
    const ScopedFile stream = Stream(Bytes(3, 0x3B) + picture, opened);
    fseek(stream.get(), 3, SEEK_SET);
    uint32_t size = 77, length = label == nullptr ? 0 : 77;
    const int32_t sized = measure(stream.get(), &size, name);
    EXPECT_TRUE(sized != 0 || ftell(stream.get()) == 3) << "the position is back";
    fseek(stream.get(), 3, SEEK_SET);
    Bytes data(picture.size() + 1);
    const int32_t copied = copy(stream.get(), data.data(), &length, label, name);
    EXPECT_EQ(Bytes(data.begin() + length, data.end()), Bytes(data.size() - length)) << "the rest";
    EXPECT_EQ(std::to_string(sized) + " " + std::to_string(size) + ", " + std::to_string(copied) +
                  " " + std::string(&data[0], &data[length]),
              want);
  }
}

const std::string kLong = Document(600), kShort(40, 's'), kLonger(12290, 'x');
const Bytes kShortBlob = GifBlob("EMJLABEL001", "a.bin", Text(kShort));
const Bytes kLongBlob = GifBlob("EMJ2", "abc.bin", Text(kLong));
const Bytes kNameless = GifApplication("EMJ", {0}), kNoIdentifier = GifApplication("", {});
const Bytes kStart = GifScreen(960, 960), kEnd = GifImage(961, 961) + kGifEnd;
const Bytes kBlobs = kNoIdentifier + kShortBlob + GifComment("EMJ") +
                     GifApplication("EM", GifChain({1, 2, 3})) + kLongBlob + kEnd;
const Bytes kPicture = kStart + kBlobs, kTwoNames = kStart + kNameless + kShortBlob + kEnd;

TEST(GifBlobs, AreFound) {
  const Bytes twoSubBlocks = GifApplication("HTMLEMJI1.0", {1, 'n', 2, 'x', 'y', 1, 'z', 0});
  const char* const longer = kLonger.c_str();
  const Bytes padded = kPicture + Bytes(12289, 0);
  Check("no blob", kStart + twoSubBlocks + kEnd, nullptr, nullptr, "0 0, -99 ");
  Check("all", kPicture, nullptr, nullptr, "0 688, -99 ");
  Check("short one", kPicture, "EMJLABEL001", "a.bin", "0 62, 0 " + kShort);
  Check("first of a label", kPicture, "EMJ", "abc", "0 626, 0 " + kLong);
  Check("first of a name", kPicture, "EMJ2", "a", "0 62, 0 " + kLong);
  Check("none", kPicture, "EMJ3", "abc.bin.", "0 0, 0 ");
  Check("first extension", kStart + twoSubBlocks + kBlobs, "", "", "0 62, 0 xyz");
  Check("empty blob", kStart + GifBlob("EMJ", "n", {}) + kEnd, "EMJ", "n", "0 17, 0 ");
  // The head counts as 14 bytes, even if the identifier is short.
  Check("short identifier", kStart + GifApplication("EMJ", GifChain({1, 2, 3})) + kEnd, nullptr,
        nullptr, "0 19, -99 ");
  // A label longer than the identifier is also compared with the bytes after the identifier.
  Check("long label", kPicture, "EMJLABEL001\5a.bin(ss", "a.bin", "0 62, 0 " + kShort);
  Check("other long label", kPicture, "EMJLABEL001\5a.bin)ss", "a.bin", "0 62, 0 ");
  Check("empty name, no data", kTwoNames, "EMJ", "", "0 15, 0 ");
  Check("after an empty name", kTwoNames, "EMJ", "a", "0 62, 0 " + kShort);
  Check("odd end", kStart + kNoIdentifier + Bytes{7}, "", "", "0 0, 0 ");
  // The size of a truncated picture's blobs counts only bytes that it has.
  Check("all cut", kStart + FirstOf(kLongBlob, 600), nullptr, nullptr, "-30 535, -99 ");
  Check("cut in the data", kStart + FirstOf(kLongBlob, 600), "EMJ", "",
        "-30 535, -30 " + kLong.substr(0, 510));
  Check("screen too wide", GifScreen(961, 1) + kBlobs, "EMJ", "a", "0 62, -31 ");
  Check("screen too high", GifScreen(1, 961) + kBlobs, "EMJ", "a", "0 62, -31 ");
  Check("longest wanted", padded, longer + 1, longer + 1, "0 0, 0 ");
  Check("label too long", padded, longer, "a", "0 62, -99 ");
  Check("name too long", padded, "EMJ", longer, "-99 0, -99 ");
}

const std::string kLarge(70000, 'x');
const Bytes kHead = PngStart(), kOne = PngBlob("EMJBLOB-1.0", "one.bin", Text("one"));
const Bytes kForeign = PngBlob("EMI12345678", "two", {'4'});
const Bytes kAll =
    kHead + kOne + kForeign + kPngImage + PngBlob("EMJBLOB-1.0", "two", Text(kLarge)) + kPngEnd;

TEST(PngBlobs, ByNameAndLabel) {
  const std::string longest(65536, 'n'), longer(65537, 'n');
  const Bytes longNamed = kHead + PngBlob("EMJBLOB-1.0", longest + longest, {'d'});
  Check("all", kAll, nullptr, nullptr, "0 70075, -99 ");
  Check("all, without an end", FirstOf(kAll, kAll.size() - 13), nullptr, nullptr,
        "-30 70075, -99 ");
  Check("first of a label", kAll, "EMJ", "", "0 41, 0 one");
  Check("by both", kAll, "EMJBLOB-1.0", "one", "0 41, 0 one");
  Check("by name", kAll, "EMJ", "two", "0 70034, 0 " + kLarge);
  Check("none", kAll, "EMJ", "one.bin.", "0 0, 0 ");
  Check("foreign label", kAll, "", "two", "0 70034, 0 4");
  Check("other label", kAll, "EMJ0", "one", "0 41, 0 ");
  Check("label over its field", kAll, "EMJBLOB-1.0x", "one", "0 41, 0 ");
  Check("label too long", kAll, longer.c_str(), "one", "0 41, -99 ");
  Check("longest name", longNamed, "EMJ", longest.c_str(), "0 131104, 0 d");
  Check("name too long", longNamed, "EMJ", longer.c_str(), "-99 0, -99 ");
}

TEST(PngBlobs, Damage) {
  const auto claim = [&](uint32_t nameLength, uint32_t dataLength) {
    return kHead + Patched(Patched(kOne, 8 + 11, Be32(nameLength)), 8 + 15 + 7, Be32(dataLength));
  };
  const std::string crc(kOne.end() - 4, kOne.end());
  Check("huge chunk", kHead + kPngHuge + kPngEnd, "EMJ", "one", "-30 0, -30 ");
  Check("signature", Patched(kAll, 0, {7}), "EMJ", "one", "0 41, -30 ");
  Check("largest", PngStart(960, 960) + kOne, "EMJ", "", "0 41, 0 one");
  Check("too wide", PngStart(961, 1) + kOne, "EMJ", "", "0 41, -31 ");
  Check("too high", PngStart(1, 961) + kOne, "EMJ", "", "0 41, -31 ");
  Check("name longer than stored", claim(0, 3), "EMJ", "one.bin", "0 41, 0 one");
  Check("stored name over the end", claim(UINT32_MAX, 3), "EMJ", "one.bin", "0 41, -30 ");
  Check("data up to the end", claim(7, 3 + 4), "EMJ", "one", "0 41, 0 one" + crc);
  Check("data over the end", claim(7, 3 + 5), "EMJ", "one", "0 41, -99 ");
}

}  // namespace
}  // namespace lumigram::test
