// Sizes and bytes of the blobs of PNG pictures.
#include "core/png/png_blobs.h"

#include <gtest/gtest.h>

#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

const std::string kLabel = "EMJBLOB-1.0";
const Bytes kStart = PngStart(), kData = {7, 8, 9}, kLarge(70000, 5);
const Bytes kOne = PngBlob(kLabel, "one.bin", kData), kTwo = PngBlob(kLabel, "two", kLarge);
const Bytes kForeign = PngBlob("EMI12345678", "two", {4});
const Bytes kAll = kStart + kOne + kForeign + kPngImage + kTwo + kPngEnd;
const uint32_t kOneSize = 31 + 7 + 3, kTwoSize = 31 + 3 + 70000;

void Check(const char* what, const Bytes& picture, const std::string& name, int32_t sizeStatus,
           uint32_t wantSize, int32_t copyStatus, const Bytes& wantData,
           const std::string& label = "EMJ", uint32_t capacity = 70000) {
  SCOPED_TRACE(what);
  for (Opened opened : kBothWays) {
    ScopedFile stream = Stream(Text("before") + picture, opened);
    fseek(stream.get(), 6, SEEK_SET);
    uint32_t size = 7, length = 7;
    EXPECT_EQ(GetSizeApplicationExtensionFromPng(stream.get(), &size, name.c_str()), sizeStatus);
    EXPECT_EQ(size, wantSize);
    EXPECT_TRUE(sizeStatus != 0 || ftell(stream.get()) == 6) << "it is put back";
    fseek(stream.get(), 6, SEEK_SET);
    Bytes data(capacity);
    EXPECT_EQ(
        CopyBlobFromPng(stream.get(), data.data(), &length, label.c_str(), name.c_str(), capacity),
        copyStatus);
    EXPECT_EQ(FirstOf(data, length), wantData);
  }
}

TEST(PngBlobs, ByNameAndLabel) {
  const std::string longest(65536, 'n');
  const Bytes longNamed = kStart + PngBlob(kLabel, longest + longest, kData);
  Check("first", kAll, "", 0, kOneSize, 0, kData);
  Check("beginning", kAll, "one", 0, kOneSize, 0, kData, kLabel);
  Check("behind the image", kAll, "two", 0, kTwoSize, 0, kLarge);
  Check("longer name", kAll, "one.bin.", 0, 0, 0, {});
  Check("longest name", longNamed, longest, 0, 31 + 131072 + 3, 0, kData);
  Check("other long name", longNamed, std::string("m").append(longest, 1), -30, 0, -30, {});
  Check("name over its limit", longNamed, longest + "n", -99, 0, -99, {});
  Check("any label", kAll, "two", 0, kTwoSize, 0, {4}, "");
  Check("other label", kAll, "one", 0, kOneSize, 0, {}, "EMJ0");
  Check("longer label", kAll, "one", 0, kOneSize, 0, {}, kLabel + "x");
  Check("label over its limit", kAll, "one", 0, kOneSize, -99, {}, longest + "x");
  Check("room", kAll, "one", 0, kOneSize, 0, kData, "", 3);
  Check("no room", kAll, "one", 0, kOneSize, -99, {}, "", 2);
}

TEST(PngBlobs, Damage) {
  const auto claim = [&](uint32_t nameLength, uint32_t dataLength) {
    return kStart + Patched(Patched(kOne, 8 + 11, Be32(nameLength)), 8 + 15 + 7, Be32(dataLength));
  };
  const Bytes toTheEnd = claim(7, 3 + 4);
  Check("mark cut", kStart + PngChunk("emJe", Text("EM")), "", -30, 0, -30, {});
  Check("name cut", kStart + FirstOf(kOne, 8 + 15 + 6), "one.bin", -30, 0, -30, {});
  Check("no end", kStart + kForeign, "two", -30, 0, -30, {});
  Check("huge", kStart + kPngHuge + kPngEnd, "one", -30, 0, -30, {});
  Check("signature", Patched(kAll, 0, {7}), "one", 0, kOneSize, -30, {});
  Check("head cut", FirstOf(kStart, 32), "one", -30, 0, -30, {});
  Check("largest", PngStart(960, 960) + kOne, "", 0, kOneSize, 0, kData);
  Check("too wide", PngStart(961, 1) + kOne, "", 0, kOneSize, -31, {});
  Check("too high", PngStart(1, 961) + kOne, "", 0, kOneSize, -31, {});
  Check("stored length short", claim(0, 3), "one.bin", 0, kOneSize, 0, kData);
  Check("stored length huge", claim(UINT32_MAX, 3), "one.bin", 0, kOneSize, -30, {});
  Check("data to the end", toTheEnd, "one", 0, kOneSize, 0, {toTheEnd.end() - 7, toTheEnd.end()});
  Check("data over the end", claim(7, 3 + 5), "one", 0, kOneSize, -99, {});
}

TEST(PngBlobs, AllAndArguments) {
  const ScopedFile stream = Stream(kAll), cut = Stream(FirstOf(kAll, kAll.size() - 13));
  uint8_t data[9];
  uint32_t n = 7;
  EXPECT_EQ(GetSizeApplicationExtensionFromPng(stream.get(), &n, nullptr), 0);
  EXPECT_EQ(n, kOneSize + kTwoSize);
  EXPECT_EQ(GetSizeApplicationExtensionFromPng(cut.get(), &n, nullptr), -30);
  EXPECT_EQ(n, kOneSize + kTwoSize) << "what was counted so far";
  EXPECT_EQ(GetSizeApplicationExtensionFromPng(nullptr, &n, ""), -99);
  EXPECT_EQ(GetSizeApplicationExtensionFromPng(stream.get(), nullptr, ""), -99);
  const auto copy = GetApplicationExtensionDataFromPng;
  EXPECT_EQ(copy(stream.get(), data, &n, kLabel.c_str(), "one.bin"), 0);
  EXPECT_EQ(n, 3u);
  EXPECT_EQ(copy(nullptr, data, &n, "", ""), -99);
  EXPECT_EQ(copy(stream.get(), nullptr, &n, "", ""), -99);
  EXPECT_EQ(copy(stream.get(), data, nullptr, "", ""), -99);
  EXPECT_EQ(copy(stream.get(), data, &n, nullptr, ""), -99);
  EXPECT_EQ(copy(stream.get(), data, &n, "", nullptr), -99);
}

}  // namespace
}  // namespace lumigram::test
