// Whole writes: their limits, and that a refused picture is not changed.
#include <gtest/gtest.h>

#include <filesystem>

#include "core/base/text.h"
#include "lumigram.h"
#include "tests/support/gif_builder.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

// Writes the record, with blobs, to a picture in a file of at least that size: bytes after the
// picture's end are not copied. A picture that is refused must not change.
int32_t Write(AttrInfo& attr, FileType type, Bytes picture, size_t size = 0,
              const std::vector<std::string>& uris = {}, const char* name = "p.png") {
  const TempFolder folder;
  picture.resize(std::max(size, picture.size()));
  const std::string path = folder.Write(name, picture);
  for (size_t i = 0; i < std::size(attr.appExt); ++i) {
    const std::string uri = i < uris.size() ? uris[i] : "";
    CopyText(attr.appExt[i].labelName, "EMJ");
    CopyText(attr.appExt[i].binaryDataUri, uri);
    CopyText(attr.appExt[i].fileName, uri.substr(uri.rfind('/') + 1));
  }
  const ScopedFile stream(fopen(path.c_str(), "rb"));
  fseek(stream.get(), 9, SEEK_SET);
  const int32_t status = SetXmlStringToFile(stream.get(), path.c_str(), &attr, type);
  const Bytes after = ReadWhole(path);
  EXPECT_TRUE(status != 0 ? after == picture : after != picture && after[12] == picture[12]);
  return status;
}

TEST(SetXmlStringToFile, LimitsAndOrderOfFaults) {
  constexpr size_t kLimit = 2097152, kEstimate = kLimit + 10258;
  const TempFolder folder;
  const std::string kept = "file://THIS/b", unknown = "file://THIS/x", missing = "/missing";
  const std::string blob = folder.Write("blob", Bytes(300)), tiny = folder.Write("t", {1});
  const std::string empty = folder.Write("empty", {}), half = folder.Write("half", {});
  std::filesystem::resize_file(half, 2139095023);  // two of them are estimated at 2^32 bytes
  const Bytes jpeg = kJpegStart + JpegFrame() + kJpegScan + kJpegEnd;
  const Bytes gif =
      GifScreen() + GifApplication("", {}) + GifBlob("EMJ", "b", Bytes(300)) + GifImage() + kGifEnd;
  const Bytes png = PngStart() + PngBlob("EMJ00000000", "b", Bytes(300)) + kPngImage + kPngEnd;
  AttrInfo attr = {};
  EXPECT_EQ(Write(attr, kFileTypeJpeg, jpeg, kEstimate, {missing}), 0);
  EXPECT_EQ(Write(attr, kFileTypeJpeg, jpeg, kEstimate + 1), -99);
  for (const FileType type : {kFileTypeGif, kFileTypePng}) {
    const Bytes& picture = type == kFileTypeGif ? gif : png;
    const size_t old =
        type == kFileTypeGif ? 14 + 2 + 300 + 3 : 31 + 1 + 300;  // the size of the blob
    const std::tuple<const char*, std::vector<std::string>, size_t> cases[] = {
        {"the blob removed", {}, kEstimate + old},
        {"kept", {kept}, kEstimate},
        {"kept, and one that is not there", {kept, unknown}, kEstimate},
        {"kept twice", {kept, kept}, kEstimate - old},
        {"exchanged", {blob}, kEstimate + old - (300 + 17 + 1 + 4)}};
    for (const auto& [what, uris, size] : cases) {
      EXPECT_EQ(Write(attr, type, picture, size, uris), 0) << what << ", type " << type;
      EXPECT_EQ(Write(attr, type, picture, size + 1, uris), -99) << what << ", type " << type;
    }
    for (const std::string& uri : {half, empty, missing})
      EXPECT_EQ(Write(attr, type, picture, 0, {uri, uri}), -99) << uri << ", type " << type;
    // The estimate wraps: the writer finds the fault of the picture first, not the missing room.
    EXPECT_EQ(Write(attr, type, FirstOf(picture, 36), 0, {half, half}), -30) << "type " << type;
  }
  // The smallest blobs, and a document of 10,234 bytes, take more than the estimate.
  for (int i = 0; i < 10; ++i) {
    CopyText(attr.tag[i].tagName, "n");
    CopyText(attr.tag[i].tagElement, std::string(i < 9 ? 1000 : 999, 'x'));
  }
  std::vector<std::string> tinies(100, tiny);
  tinies[50] = kept;
  EXPECT_EQ(Write(attr, kFileTypeGif, gif, 0, tinies), 0);
  EXPECT_EQ(Write(attr, kFileTypePng, png, 0, tinies), 0);

  const auto filled = [](size_t n) {
    return PngStart() + PngChunk("abCd", Bytes(n)) + kPngImage + kPngEnd;
  };
  const size_t room = kLimit - filled(0).size() - (18 + 15);  // besides the smallest document
  // Sub-blocks of an unknown extension, in which a size query finds a block that ends early.
  const Bytes odd = GifScreen() + Bytes{0x21, 9, 4, 0x21, 0xFF, 250, 1, 0} + GifImage() + kGifEnd;
  attr = {};
  EXPECT_EQ(Write(attr, kFileTypePng, filled(room)), 0);
  EXPECT_EQ(Write(attr, kFileTypePng, filled(room + 1), 0, {}, "p.txt"), -42);
  EXPECT_EQ(Write(attr, kFileTypePng, filled(0), 0, {}, "p.txt"), -99);
  EXPECT_EQ(Write(attr, kFileTypeGif, filled(0), 0, {}, "p.txt"), -30);
  EXPECT_EQ(Write(attr, kFileTypeGif, odd, 0, {kept}), 0);
  EXPECT_EQ(Write(attr, kFileTypePng, {}), -99);
  // A faulty picture that claims more blobs than it can hold: in 32 bits the estimate is over the
  // limit, or just under the size of the file.
  for (const auto& [claimed, status] : {std::pair(1u << 20, -99), {0u - 8, -30}}) {
    const Bytes lying = Bytes(33) + PngChunkClaiming(claimed, "emJe", Text("EMJ")) + kPngEnd;
    EXPECT_EQ(Write(attr, kFileTypePng, lying), status) << claimed << " bytes claimed";
  }
  EXPECT_EQ(Write(attr, 4, filled(0)), -99);
  CopyText(attr.name[9], std::string(25, 'x'));
  EXPECT_EQ(Write(attr, 4, filled(0)), -42);
}

}  // namespace
}  // namespace lumigram::test
