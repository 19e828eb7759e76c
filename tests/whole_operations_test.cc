// Whole reads and writes while each of their calls of the C library fails, and in several threads.
#include <errno.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <thread>

#include "core/base/text.h"
#include "lumigram.h"
#include "tests/support/fail_calls.h"
#include "tests/support/gif_builder.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

// Measures and copies a blob. A JPEG has none.
int32_t CopyBlob(FILE* stream, FileType type) {
  const bool isGif = type == kFileTypeGif;
  const auto measure =
      isGif ? GetSizeApplicationExtensionFromGif : GetSizeApplicationExtensionFromPng;
  const auto copy = isGif ? GetApplicationExtensionDataFromGif : GetApplicationExtensionDataFromPng;
  uint32_t size = 0;
  uint8_t data[100];
  if (type == kFileTypeJpeg) return 0;
  const int32_t status = measure(stream, &size, "b");
  return status != 0 ? status : copy(stream, data, &size, "EMJ", "b");
}

// Writes the record, or reads the category and a blob, in blocks or through stdio.
int32_t Operate(const std::string& path, const AttrInfo* record, std::string* category,
                bool throughStdio = false) {
  FILE* stream = nullptr;
  FileType type = kFileTypeUnknown;
  if (int32_t s = OpenFile(path.c_str(), 0, &stream, &type); s != 0) return s;
  if (throughStdio) stream = freopen(path.c_str(), "r+b", stream);
  const ScopedFile file(stream);
  if (record != nullptr) return SetXmlStringToFile(stream, path.c_str(), record, type);
  char document[kLumigramDocumentBufferBytes] = {}, content[257] = {};
  int32_t height = 0, width = 0, pop = 0;
  if (int32_t s = GetXmlString(stream, type, document, &height, &width, &pop); s != 0) return s;
  (void)GetElementContent(document, "<category>", "</category>", content);
  *category = content;
  rewind(stream);
  return CopyBlob(stream, type);
}

constexpr char kDocument[] = "<emoji><category>old</category></emoji>";
const std::pair<const char*, Bytes> kPictures[] = {
    {".gif", GifScreen() + GifComment(kDocument) + GifImage() + GifApplication("EMJ-like", {0}) +
                 GifBlob("EMJ", "other", {1}) + GifBlob("EMJ", "b", {1}) + kGifEnd},
    {".jpg", kJpegStart + JpegFrame() + JpegComment("longer than a root") + JpegComment(kDocument) +
                 kJpegScan + kJpegEnd + kJpegEnd},
    {".png", PngStart() + PngChunk("tEXt", Text("other text")) + PngDocument(kDocument) +
                 PngBlob("EMJ00000000", "other", {1}) + PngBlob("EMJ00000000", "b", {1}) +
                 kPngImage + kPngEnd}};

TEST(WholeOperations, EachCallFailingOnceOrFromThenOn) {
  const TempFolder folder;
  const auto count = [](const std::string& path) {
    return std::distance(std::filesystem::directory_iterator(path), {});
  };
  AttrInfo record = {};
  CopyText(record.category, "new");
  record.appExt[0] = {"EMJ", "b", "file://THIS/b"};
  record.appExt[1] = {"EMJ", "new", ""};
  CopyText(record.appExt[1].binaryDataUri, folder.Write("new", Bytes(5000)));
  for (const auto& [extension, picture] : kPictures) {
    const std::string path = folder.Write(extension, picture);
    const auto files = count(folder.Path("")), open = count("/proc/self/fd");
    for (int run = 0, left = 8; left > 0; ++run) {
      const bool writes = run % 2 == 0, once = run % 4 < 2, throughStdio = run % 8 < 4;
      folder.Write(extension, picture);
      std::string category, failed;
      int32_t status;
      {
        const FailCalls fail(kAllCalls, run / 8, EIO,
                             once ? FailCalls::kOnce : FailCalls::kFromThenOn);
        status = Operate(path, writes ? &record : nullptr, &category, throughStdio);
        if (fail.Happened()) failed = fail.Failed();
      }
      left = failed.empty() ? left - 1 : 8;
      SCOPED_TRACE(testing::Message()
                   << (writes ? "writing " : "reading ") << extension
                   << (throughStdio ? " through stdio; " : "; ") << failed << ", call " << run / 8
                   << (once ? ", fails" : " and all later ones fail"));
      EXPECT_TRUE((std::set<int32_t>{0, -1, -20, -30, -99}.contains(status))) << status;
      EXPECT_TRUE(status == 0 || left == 8);
      EXPECT_EQ(ReadWhole(path) != picture, writes && status == 0);
      EXPECT_TRUE(status != 0 || !writes || Operate(path, nullptr, &category) == 0);
      EXPECT_TRUE(status != 0 || category == (writes ? "new" : "old")) << category;
      EXPECT_EQ(count(folder.Path("")), files);
      EXPECT_EQ(count("/proc/self/fd"), open);
    }
  }
}

TEST(WholeOperations, DifferentPicturesInThreads) {
  const TempFolder folder;
  std::vector<std::thread> threads;
  for (size_t t = 0; t < 6; ++t) {
    const auto& [extension, picture] = kPictures[t % 3];
    threads.emplace_back([path = folder.Write(std::to_string(t) + extension, picture)] {
      for (int round = 0; round < 20; ++round) {
        const std::string wanted = path + std::to_string(round);
        const auto record = std::make_unique<AttrInfo>();
        std::string category;
        CopyText(record->category, wanted);
        EXPECT_EQ(Operate(path, record.get(), &category), 0);
        EXPECT_EQ(Operate(path, nullptr, &category), 0);
        EXPECT_EQ(category, wanted);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace lumigram::test
