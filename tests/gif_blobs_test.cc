// The blobs of GIF pictures: what they take of the file, and their bytes.
#include "core/gif/gif_blobs.h"

#include "tests/support/gif_builder.h"
#include "tests/support/picture_checks.h"

namespace lumigram::test {
namespace {

// Both functions on a picture behind three odd bytes: "status size, status bytes".
std::string Find(const Bytes& gif, const char* label, const char* name, Opened opened) {
  const ScopedFile stream = Stream(Bytes(3, 0x3B) + gif, opened);
  fseek(stream.get(), 3, SEEK_SET);
  uint32_t size = 77, length = 77;
  const int32_t sized = GetSizeApplicationExtensionFromGif(stream.get(), &size, name);
  EXPECT_TRUE(sized != 0 || ftell(stream.get()) == 3) << "the writer reads on from there";
  const std::string result = std::to_string(sized) + " " + std::to_string(size) + ", ";
  if (label == nullptr) return result;
  fseek(stream.get(), 3, SEEK_SET);
  Bytes data(gif.size() + 1);
  const int32_t copied =
      GetApplicationExtensionDataFromGif(stream.get(), data.data(), &length, label, name);
  EXPECT_EQ(Bytes(data.begin() + length, data.end()), Bytes(data.size() - length)) << "no more";
  return result + std::to_string(copied) + " " + std::string(&data[0], &data[length]);
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
  const struct {
    Bytes gif;
    const char *label, *name;
    std::string want;
  } cases[] = {
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
  for (const auto& c : cases) {
    for (Opened opened : kBothWays)
      EXPECT_EQ(Find(c.gif, c.label, c.name, opened), c.want) << &c - cases;
  }
}

TEST(GifBlobs, Arguments) {
  const ScopedFile owner = Stream(kStart + kBlobs);
  FILE* const file = owner.get();
  Bytes data(600);
  uint32_t n = 0;
  EXPECT_EQ(CopyBlobFromGif(file, data.data(), &n, "EMJ2", "abc", 600), kOk);
  EXPECT_EQ(data, Text(kLong));
  rewind(file);
  EXPECT_EQ(CopyBlobFromGif(file, data.data(), &n, "EMJ2", "abc", 599), kNoRoom);
  EXPECT_EQ(GetSizeApplicationExtensionFromGif(nullptr, &n, ""), -99);
  EXPECT_EQ(GetSizeApplicationExtensionFromGif(file, nullptr, ""), -99);
  EXPECT_EQ(GetApplicationExtensionDataFromGif(file, nullptr, &n, "", ""), -99);
  EXPECT_EQ(GetApplicationExtensionDataFromGif(file, data.data(), &n, nullptr, ""), -99);
  EXPECT_EQ(GetApplicationExtensionDataFromGif(file, data.data(), &n, "", nullptr), -99);
}

}  // namespace
}  // namespace lumigram::test
