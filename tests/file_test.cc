// File types, opening and sizes.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "lumigram.h"
#include "tests/support/bytes.h"

namespace lumigram::test {
namespace {

TEST(FileType, ByTheLastDotOfThePath) {
  const std::pair<const char*, FileType> known[] = {
      {"PHOTO.GIF", 1}, {"a/b.c/a.JpEg", 2}, {"b.jpg", 2}, {"c.png", 3}, {".gif", 1}};
  for (const auto& [path, want] : known) {
    FileType type = 0;
    EXPECT_EQ(GetFileType(path, &type), 0) << path;
    EXPECT_EQ(type, want) << path;
  }
  FileType type = 7;
  for (const char* path : {"", "photo", "a.png.bak", "x.gifx", "x.gif ", "album.png/photo",
                           "x.pngggggggggggggggg", "x.pn"}) {
    EXPECT_EQ(GetFileType(path, &type), -1) << path;
  }
  EXPECT_EQ(GetFileType(nullptr, &type), -1);
  EXPECT_EQ(GetFileType("a.gif", nullptr), -1);
  EXPECT_EQ(type, 7);
}

TEST(OpenFile, StatusesAndWhatIsStored) {
  TempFolder folder;
  const std::string there = folder.Write("a.png", Text("x")), missing = folder.Path("b.png");
  FILE* const untouched = stdin;
  FILE* stream = untouched;
  FileType type = 0;
  EXPECT_EQ(OpenFile(there.c_str(), 2, &stream, &type), -99);
  EXPECT_EQ(OpenFile(nullptr, 0, &stream, &type), -99);
  EXPECT_EQ(OpenFile(there.c_str(), 0, &stream, nullptr), -99);
  EXPECT_EQ(OpenFile((there + "x").c_str(), 0, &stream, &type), -21);
  EXPECT_EQ(stream, untouched);
  EXPECT_EQ(type, 0);
  EXPECT_EQ(OpenFile(missing.c_str(), 0, &stream, &type), -20);
  EXPECT_EQ(stream, nullptr);
  EXPECT_EQ(type, 3);
  ASSERT_EQ(OpenFile(there.c_str(), 1, &stream, &type), 0);
  fclose(stream);
  EXPECT_EQ(ReadWhole(there), Bytes()) << "opening for writing truncates";
}

// U+1F600 as Java delivers it, and as the file system has it.
constexpr char kJavaFace[] = "\xED\xA0\xBD\xED\xB8\x80.gif";
constexpr char kFace[] = "\xF0\x9F\x98\x80.gif";

TEST(OpenFile, FindsBothSpellingsOfAnEmoji) {
  TempFolder folder;
  // The status, and the first byte of what was opened.
  const auto open = [&](uint32_t mode) {
    FILE* stream = nullptr;
    FileType type = 0;
    const int32_t status = OpenFile(folder.Path(kJavaFace).c_str(), mode, &stream, &type);
    const ScopedFile owner(stream);
    return std::pair(status, status == 0 ? fgetc(stream) : 0);
  };
  EXPECT_EQ(open(0).first, -20);
  EXPECT_EQ(open(1).first, 0);
  EXPECT_TRUE(std::filesystem::exists(folder.Path(kFace))) << "a new file gets the real spelling";
  folder.Write(kFace, Text("real"));
  EXPECT_EQ(open(0), std::pair(0, int{'r'}));
  folder.Write(kJavaFace, Text("delivered"));
  EXPECT_EQ(open(0), std::pair(0, int{'d'})) << "the spelling as delivered comes first";
  EXPECT_EQ(open(1).first, 0);
  EXPECT_EQ(ReadWhole(folder.Path(kFace)), Text("real")) << "the other was there to be written";
}

TEST(Sizes, LeaveTheStreamWhereTheyPromise) {
  for (Opened opened : kBothWays) {
    ScopedFile stream = Stream(Bytes(5000), opened);
    ASSERT_EQ(fseek(stream.get(), 100, SEEK_SET), 0);
    int32_t size = 0;
    EXPECT_EQ(CommonGetFileSize(stream.get(), &size), 0);
    EXPECT_EQ(size, 5000);
    void* block = nullptr;
    EXPECT_EQ(GetMemory(stream.get(), &block), 5000u);
    EXPECT_EQ(memcmp(block, Bytes(5000).data(), 5000), 0);
    free(block);
    EXPECT_EQ(ftell(stream.get()), 100);
    EXPECT_EQ(GetFileLength(stream.get()), 5000);
    EXPECT_EQ(ftell(stream.get()), 0);

    ScopedFile empty = Stream({}, opened);
    block = stream.get();
    EXPECT_EQ(GetMemory(empty.get(), &block), 0u);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(GetFileLength(empty.get()), 0);
  }
  EXPECT_EQ(GetFileLength(nullptr), -1);
  void* block;
  EXPECT_EQ(GetMemory(nullptr, &block), 0u);
}

TEST(Sizes, StopAtWhatA32BitPositionCanTell) {
  TempFolder folder;
  const std::string path = folder.Write("sparse", {});
  for (const char* mode : {"rb", "r+b"}) {
    for (const auto& [bytes, want] :
         {std::pair(uintmax_t{2147483647}, 0), std::pair(uintmax_t{2147483648}, -1)}) {
      std::filesystem::resize_file(path, bytes);
      ScopedFile stream(fopen(path.c_str(), mode));
      ASSERT_NE(stream, nullptr);
      int32_t size = 0;
      EXPECT_EQ(CommonGetFileSize(stream.get(), &size), want) << mode;
      EXPECT_EQ(GetFileLength(stream.get()), want == 0 ? 2147483647 : -1) << mode;
    }
  }
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[1]);
  ScopedFile stream(fdopen(ends[0], "rb"));
  int32_t size = 0;
  EXPECT_EQ(CommonGetFileSize(stream.get(), &size), -1);
}

}  // namespace
}  // namespace lumigram::test
