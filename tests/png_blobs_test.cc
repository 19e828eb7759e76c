// Sizes and bytes of the blobs of PNG pictures.
#include "core/png/png_blobs.h"

#include <gtest/gtest.h>

#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

const std::string kLabel = "EMJBLOB-1.0";
const Bytes kData = {7, 8, 9}, kLarge(70000, 5), kForeignData = {4};
const Bytes kOne = PngBlob(kLabel, "one.bin", kData), kTwo = PngBlob(kLabel, "two", kLarge);
const Bytes kForeign = PngBlob("EMI12345678", "two", kForeignData);
const Bytes kAll = PngStart() + kOne + kForeign + kPngImage + kTwo + kPngEnd;
const uint32_t kOneSize = 31 + 7 + 3, kTwoSize = 31 + 3 + 70000;

void Check(const char* what, const Bytes& picture, const std::string& name, int32_t sizeStatus,
           uint32_t wantSize, int32_t copyStatus, const Bytes& wantData) {
  SCOPED_TRACE(what);
  for (Opened opened : kBothWays) {
    ScopedFile stream = Stream(Text("before") + picture, opened);
    fseek(stream.get(), 6, SEEK_SET);
    uint32_t size = 7, length = 7;
    EXPECT_EQ(GetSizeApplicationExtensionFromPng(stream.get(), &size, name.c_str()), sizeStatus);
    EXPECT_EQ(size, wantSize);
    EXPECT_TRUE(sizeStatus != 0 || ftell(stream.get()) == 6) << "it is put back";
    fseek(stream.get(), 6, SEEK_SET);
    Bytes data(picture.size());
    EXPECT_EQ(
        GetApplicationExtensionDataFromPng(stream.get(), data.data(), &length, "EMJ", name.c_str()),
        copyStatus);
    EXPECT_EQ(FirstOf(data, length), wantData);
  }
}

TEST(PngBlobs, SizeAndCopyByName) {
  const Bytes start = PngStart();
  const std::string longest(65536, 'n');
  const Bytes longNamed = start + PngBlob(kLabel, longest + longest, kData);
  const auto blob = [&](uint32_t nameLength, uint32_t dataLength) {
    return start + PngChunk("emJe", BlobData(kLabel, nameLength, "one", dataLength, kData));
  };
  const Bytes toTheEnd = blob(3, 3 + 4);
  Check("first", kAll, "", 0, kOneSize, 0, kData);
  Check("beginning", kAll, "one", 0, kOneSize, 0, kData);
  Check("behind the image", kAll, "two", 0, kTwoSize, 0, kLarge);
  Check("longer name", kAll, "one.bin.", 0, 0, 0, {});
  Check("mark cut", start + PngChunk("emJe", Text("EM")), "", -30, 0, -30, {});
  Check("name cut", start + FirstOf(kOne, 8 + 15 + 6), "one.bin", -30, 0, -30, {});
  Check("no end", start + kForeign, "two", -30, 0, -30, {});
  Check("huge", start + kPngHuge + kPngEnd, "one", -30, 0, -30, {});
  Check("signature", Patched(kAll, 0, {7}), "one", 0, kOneSize, -30, {});
  Check("head cut", FirstOf(start, 32), "one", -30, 0, -30, {});
  Check("largest", PngStart(960, 960) + kOne, "", 0, kOneSize, 0, kData);
  Check("too wide", PngStart(961, 1) + kOne, "", 0, kOneSize, -31, {});
  Check("too high", PngStart(1, 961) + kOne, "", 0, kOneSize, -31, {});
  Check("stored length short", blob(0, 3), "one", 0, 37, 0, kData);
  Check("stored length huge", blob(UINT32_MAX, 3), "one", 0, 37, -30, {});
  Check("data to the end", toTheEnd, "one", 0, 37, 0, Bytes(toTheEnd.end() - 7, toTheEnd.end()));
  Check("data over the end", blob(3, 3 + 5), "one", 0, 37, -99, {});
  Check("longest name", longNamed, longest, 0, 31 + 131072 + 3, 0, kData);
  Check("name over its limit", longNamed, longest + "n", -99, 0, -99, {});
}

TEST(PngBlobs, SizeOfAll) {
  uint32_t size = 7;
  EXPECT_EQ(GetSizeApplicationExtensionFromPng(Stream(kAll).get(), &size, nullptr), 0);
  EXPECT_EQ(size, kOneSize + kTwoSize);
  const Bytes cut = FirstOf(kAll, kAll.size() - 1 - kPngEnd.size());
  EXPECT_EQ(GetSizeApplicationExtensionFromPng(Stream(cut).get(), &size, nullptr), -30);
  EXPECT_EQ(size, kOneSize + kTwoSize) << "what was counted so far";
}

TEST(PngBlobs, CopyByLabelIntoARoom) {
  const auto check = [](const std::string& label, const char* name, uint32_t capacity,
                        int32_t status, const Bytes& wantData) {
    Bytes data(capacity);
    uint32_t length = 7;
    EXPECT_EQ(
        CopyBlobFromPng(Stream(kAll).get(), data.data(), &length, label.c_str(), name, capacity),
        status);
    EXPECT_EQ(FirstOf(data, length), wantData);
  };
  check("", "two", 9, 0, kForeignData);
  check(kLabel, "one", 9, 0, kData);
  check(kLabel + "x", "one", 9, 0, {});
  check("EMJ0", "one", 9, 0, {});
  check(std::string(65537, 'x'), "", 9, -99, {});
  check("", "one", 3, 0, kData);
  check("", "one", 2, -99, {});
}

TEST(PngBlobs, Arguments) {
  ScopedFile stream = Stream(kAll);
  uint8_t data[9];
  uint32_t n = 7;
  for (int null = 0; null < 5; ++null) {
    EXPECT_EQ(GetApplicationExtensionDataFromPng(
                  null == 0 ? nullptr : stream.get(), null == 1 ? nullptr : data,
                  null == 2 ? nullptr : &n, null == 3 ? nullptr : "", null == 4 ? nullptr : ""),
              -99);
  }
  EXPECT_EQ(GetSizeApplicationExtensionFromPng(nullptr, &n, ""), -99);
  EXPECT_EQ(GetSizeApplicationExtensionFromPng(stream.get(), nullptr, ""), -99);
  EXPECT_EQ(n, 7u);
}

}  // namespace
}  // namespace lumigram::test
