// Pictures in memory: the same results as from files, no byte past their end, and limits.
#include "fuzz/memory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "tests/support/fail_calls.h"
#include "tests/support/gif_builder.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

using fuzz::DifferencesFromFile;
using fuzz::GuardedBytes;

const std::pair<FileType, Bytes> kPictures[] = {
    {kFileTypeGif, GifScreen() + kGifPopMarker + GifComment(Document(300)) +
                       GifBlob("EMJ", "b", Bytes(300, 1)) + GifBlob("EMJ1", "c", {}) + GifImage() +
                       kGifEnd},
    {kFileTypeJpeg, kJpegStart + JpegFrame() + JpegComment(Document()) + kJpegScan + kJpegEnd},
    {kFileTypePng, PngStart() + PngDocument(Document()) + PngBlob("EMJ00000000", "b", {1, 2, 3}) +
                       PngBlob("EMJ10000000", "c", {}) + kPngImage + kPngEnd}};

TEST(Memory, GivesTheResultsOfFiles) {
  for (const char* folder : {"/samples", "/fuzz/seeds", "/fuzz/kept"}) {
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(std::string(LUMIGRAM_SOURCE) + folder)) {
      const Bytes bytes = entry.is_regular_file() ? ReadWhole(entry.path()) : Bytes();
      if (bytes.empty()) continue;
      for (const auto& [type, picture] : kPictures)
        EXPECT_EQ(DifferencesFromFile(bytes, type), "") << entry.path() << " as kind " << type;
    }
  }
  for (const auto& [type, picture] : kPictures) {
    for (size_t size = 1; size <= picture.size(); ++size) {
      EXPECT_EQ(DifferencesFromFile(FirstOf(picture, size), type), "")
          << "kind " << type << " cut to " << size << " bytes";
    }
  }
}

TEST(Memory, KindFromTheFirstBytes) {
  const std::pair<Bytes, FileType> rows[] = {
      {Text("GIF87a"), 1},         {Text("GIF89a"), 1}, {{0xFF, 0xD8, 0xFF}, 2},
      {FirstOf(PngStart(), 8), 3}, {Text("GIF89"), 0},  {{0xFF, 0xD8}, 0},
      {FirstOf(PngStart(), 7), 0}, {Text("GIF88a"), 0}, {{}, 0}};
  for (const auto& [bytes, want] : rows) {
    const GuardedBytes guarded(bytes);
    FileType type = 7;
    EXPECT_EQ(GetFileTypeFromBytes(guarded.Get(), bytes.size(), &type), want == 0 ? -21 : 0);
    EXPECT_EQ(type, want) << testing::PrintToString(bytes);
  }
}

struct Written {
  int32_t status;
  Bytes bytes;
};

Written Write(const Bytes& picture, FileType type, const char* uri, const NewBlobs* newBlobs) {
  const auto record = std::make_unique<AttrInfo>();
  record->appExt[0] = {"EMJ", "b", ""};
  CopyText(record->appExt[0].binaryDataUri, uri);
  uint8_t* out = nullptr;
  size_t size = 7;
  const int32_t status = SetXmlStringToBytes(picture.data(), picture.size(), type, record.get(),
                                             newBlobs, &out, &size);
  const ScopedBlock<uint8_t> owner(out);
  EXPECT_EQ(out == nullptr, status != 0);
  return {status, Bytes(out, out + size)};
}

// The statuses of all functions, in the order of AllResults.
std::string Statuses(const uint8_t* bytes, size_t size, FileType type) {
  const auto r = fuzz::ResultsFromBytes(bytes, size, type);
  return testing::PrintToString(std::tuple(r->read, r->took, r->listed, r->copied, r->wrote));
}

TEST(Memory, Limits) {
  for (const auto& [type, picture] : kPictures) {
    SCOPED_TRACE("kind " + std::to_string(type));
    Bytes largest = picture;
    largest.resize(2097153);
    const bool hasBlob = type != kFileTypeJpeg;
    EXPECT_EQ(Statuses(largest.data(), 2097152, type),
              hasBlob ? "(0, 0, 0, 0, 0)" : "(0, 0, 0, -2, 0)");
    EXPECT_EQ(Statuses(largest.data(), 2097153, type), "(-99, -99, -99, -99, -99)");
    EXPECT_EQ(Statuses(picture.data(), picture.size(), 4), "(-99, -99, -99, -99, -99)");
    EXPECT_EQ(Statuses(nullptr, 1, type), "(-99, -99, -99, -99, -10)");
    EXPECT_EQ(Statuses(nullptr, 0, type),
              hasBlob ? "(-30, -30, -30, -30, -99)" : "(-30, -30, -30, -2, -99)");
    if (!hasBlob) continue;
    size_t copied = 0;
    EXPECT_EQ(
        GetBlobFromBytes(picture.data(), picture.size(), type, "EMJ", "bb", nullptr, 0, &copied),
        -2);
    const size_t blobSize = type == kFileTypeGif ? 300 : 3;
    for (const size_t capacity : {blobSize, blobSize - 1}) {
      Bytes data(blobSize, 7);
      EXPECT_EQ(GetBlobFromBytes(picture.data(), picture.size(), type, "EMJ", "b", data.data(),
                                 capacity, &copied),
                capacity == blobSize ? 0 : -99);
      EXPECT_EQ(data.back() != 7, capacity == blobSize) << "room for " << capacity;
    }
  }
}

TEST(Memory, NewBlobs) {
  const TempFolder folder;
  const std::string file = folder.Write("f", {1});
  const uint8_t byte = 1;
  const std::tuple<const char*, const char*, BlobBytes, bool, int32_t> rows[] = {
      {"a file that may be opened", file.c_str(), {}, true, 0},
      {"a file that must not be opened", file.c_str(), {}, false, -99},
      {"bytes and a URI of a file", "/missing", {&byte, 1}, false, 0},
      {"bytes in place of an old blob", "file://THIS/b", {&byte, 1}, false, 0},
      {"no bytes", "", {&byte, 0}, true, -99},
      {"more bytes than a file may have", "", {&byte, size_t{1} << 31}, true, -99}};
  for (const auto& [what, uri, bytes, mayOpenFiles, want] : rows) {
    for (const FileType type : {kFileTypeGif, kFileTypePng}) {
      SCOPED_TRACE(testing::Message() << what << ", kind " << type);
      const NewBlobs newBlobs = {&bytes, 1, mayOpenFiles};
      const Written written = Write(kPictures[type - 1].second, type, uri, &newBlobs);
      EXPECT_EQ(written.status, want);
      std::string blobs;
      (void)ListBlobsFromBytes(written.bytes.data(), written.bytes.size(), type, fuzz::AddBlob,
                               &blobs);
      EXPECT_EQ(blobs, want == 0 ? "EMJ/b/1\n" : "");
    }
  }
}

TEST(Memory, AWriteAllocatesOneBlock) {
  for (const auto& [type, picture] : kPictures) {
    for (int nth = 0; nth < 2; ++nth) {
      const FailCalls fail(kAllCalls, nth, ENOMEM);
      EXPECT_EQ(Write(picture, type, "", nullptr).status, nth == 0 ? -99 : 0)
          << "kind " << type << ", call " << nth << " fails";
    }
  }
}

// The results are not defined. No byte past the picture is read, and no output overruns.
TEST(Memory, ChangesWhileItIsRead) {
  for (const auto& [type, picture] : kPictures) {
    const GuardedBytes guarded(picture);
    std::atomic<bool> done = false;
    std::thread changer([&, changed = guarded.SecondMapping()] {
      for (size_t i = 0; !done; i += 7) changed[i % guarded.Size()] ^= static_cast<uint8_t>(i / 7);
    });
    for (int round = 0; round < 300; ++round) (void)Statuses(guarded.Get(), guarded.Size(), type);
    done = true;
    changer.join();
  }
}

}  // namespace
}  // namespace lumigram::test
