// File types, opening, sizes, the choice of the reader, and the lookup of one tag group.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "core/base/byte_source.h"
#include "core/file/obstacle.h"
#include "core/file/picture_file.h"
#include "lumigram.h"
#include "tests/support/fail_calls.h"
#include "tests/support/gif_builder.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

TEST(FileType, ByTheLastDotOfThePath) {
  // 0: an unknown extension.
  const std::pair<const char*, FileType> cases[] = {{"PHOTO.GIF", 1}, {"a/b.c/a.JpEg", 2},
                                                    {"b.jpg", 2},     {"c.png", 3},
                                                    {".gif", 1},      {"", 0},
                                                    {"photo", 0},     {"a.png.b", 0},
                                                    {"x.gifx", 0},    {"x.gif ", 0},
                                                    {nullptr, 0},     {"album.png/photo", 0},
                                                    {"x.pn", 0},      {"x.pngggggggggggggggg", 0}};
  for (const auto& [path, want] : cases) {
    FileType type = 0;
    EXPECT_EQ(GetFileType(path, &type), want == 0 ? -1 : 0) << path;
    EXPECT_EQ(type, want) << path;
  }
}

TEST(OpenFile, StatusesAndWhatIsStored) {
  TempFolder folder;
  const std::string there = folder.Write("a.png", Text("x")), missing = folder.Path("b.png");
  FILE* const untouched = stdin;
  FILE* stream = untouched;
  FileType type = 0;
  EXPECT_EQ(OpenFile(there.c_str(), 2, &stream, &type), -99);
  EXPECT_EQ(OpenFile((there + "x").c_str(), 0, &stream, &type), -21);
  EXPECT_EQ(stream, untouched);
  EXPECT_EQ(type, 0);
  EXPECT_EQ(OpenFile(missing.c_str(), 0, &stream, &type), -20);
  EXPECT_EQ(stream, nullptr);
  EXPECT_EQ(type, 3);
}

// U+1F600 in Java's spelling and in UTF-8.
constexpr char kJavaFace[] = "\xED\xA0\xBD\xED\xB8\x80.gif";
constexpr char kFace[] = "\xF0\x9F\x98\x80.gif";

TEST(OpenFile, FindsBothSpellingsOfAnEmoji) {
  TempFolder folder;
  // The status, and the first byte of the opened file.
  const auto open = [&](uint32_t mode) {
    FILE* stream = nullptr;
    FileType type = 0;
    const int32_t status = OpenFile(folder.Path(kJavaFace).c_str(), mode, &stream, &type);
    const ScopedFile owner(stream);
    return std::pair(status, status == 0 ? fgetc(stream) : 0);
  };
  EXPECT_EQ(open(0).first, -20);
  EXPECT_EQ(open(1).first, 0);
  EXPECT_TRUE(std::filesystem::exists(folder.Path(kFace))) << "a new file gets the UTF-8 spelling";
  folder.Write(kFace, Text("real"));
  EXPECT_EQ(open(0), std::pair(0, int{'r'}));
  folder.Write(kJavaFace, Text("delivered"));
  EXPECT_EQ(open(0), std::pair(0, int{'d'})) << "the delivered spelling is tried first";
  EXPECT_EQ(open(1).first, 0);
  EXPECT_EQ(ReadWhole(folder.Path(kFace)), Text("real")) << "the delivered spelling existed";
  EXPECT_EQ(ReadWhole(folder.Path(kJavaFace)), Bytes()) << "opening for writing truncates";
}

// The file is empty, so it is opened as a stream.
TEST(PictureFile, LeavesNoDescriptorBehind) {
  const TempFolder folder;
  const std::string path = folder.Write("a.png", {});
  const auto open = [&](const char* call, int error) {
    const FailCalls fail(call, 0, error);
    return int{PictureFile().Open(path.c_str())};
  };
  EXPECT_EQ(InChild([&] { return open("fstat64", kExec); }), 8) << "no descriptor is inherited";
  const auto count = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  };
  const auto before = count();
  EXPECT_EQ(open("fdopen", EMFILE), -20);
  EXPECT_EQ(count(), before);
}

TEST(Sizes, LeaveTheStreamWhereTheyPromise) {
  const Bytes zeros(5000);
  for (Opened opened : kBothWays) {
    for (const Bytes& bytes : {Bytes(5000, 7), Bytes()}) {
      const ScopedFile stream = Stream(bytes, opened);
      const long at = std::min<long>(std::ssize(bytes), 100);
      ASSERT_EQ(fseek(stream.get(), at, SEEK_SET), 0);
      int32_t size = -1;
      EXPECT_EQ(CommonGetFileSize(stream.get(), &size), 0);
      EXPECT_EQ(size, std::ssize(bytes));
      void* block = stream.get();
      EXPECT_EQ(GetMemory(stream.get(), &block), bytes.size());
      EXPECT_TRUE(bytes.empty() ? block == nullptr : memcmp(block, &zeros[0], 5000) == 0);
      free(block);
      EXPECT_EQ(ftell(stream.get()), at);
      EXPECT_EQ(GetFileLength(stream.get()), std::ssize(bytes));
      EXPECT_EQ(ftell(stream.get()), 0);
    }
  }
  EXPECT_EQ(GetFileLength(nullptr), -1);
  void* block;
  EXPECT_EQ(GetMemory(nullptr, &block), 0u);
  const ScopedFile stream = Stream(zeros, Opened::kForUpdate);
  for (const char* call : {"fgetpos64", "fseek", "ftell", "fsetpos64"}) {
    int32_t size = 0;
    const FailCalls fail(call, 0, EIO);
    EXPECT_EQ(CommonGetFileSize(stream.get(), &size), -1) << call;
  }
}

TEST(Sizes, StopAtWhatA32BitPositionCanTell) {
  const TempFolder folder;
  const std::string path = folder.Write("sparse", {});
  for (const char* mode : {"rb", "r+b"}) {
    for (const int32_t over : {0, 1}) {
      std::filesystem::resize_file(path, 2147483647 + uintmax_t(over));
      const ScopedFile stream(fopen(path.c_str(), mode));
      int32_t size = 0;
      EXPECT_EQ(CommonGetFileSize(stream.get(), &size), -over) << mode;
      EXPECT_EQ(ByteSource(stream.get()).Measure(), over == 0) << mode;
      EXPECT_EQ(GetFileLength(stream.get()), over ? -1 : 2147483647) << mode;
    }
  }
}

TEST(Extraction, PicksTheReaderAndTellsAPictureWithoutDocument) {
  const std::string longest = Document(10240), shortest = Document();
  const Bytes gif = GifScreen() + GifComment(longest) + kGifEnd, jpeg = JpegFrame() + kJpegEnd;
  Bytes largest = gif;
  largest.resize(2097152);  // zeros after the trailer
  const Bytes png = PngStart() + PngDocument(shortest) + kPngEnd, bare = PngStart() + kPngEnd;
  // Status, dimensions and pop flag, which is 77 before; the document.
  const std::tuple<const char*, Bytes, FileType, std::array<int32_t, 4>, std::string> cases[] = {
      {"GIF", gif, 1, {0, 100, 80, 0}, longest},
      {"bare GIF", GifScreen() + kGifEnd, 1, {-5, 100, 80, 0}, ""},
      {"JPEG", kJpegStart + JpegComment(shortest) + jpeg, 2, {0, 32, 16, 77}, shortest},
      {"bare JPEG", kJpegStart + jpeg, 2, {-5, 32, 16, 77}, ""},
      {"PNG", png, 3, {0, 32, 16, 77}, shortest},
      {"bare PNG", bare, 3, {-5, 32, 16, 77}, ""},
      {"only the type decides: GIF as PNG", gif, 3, {-30, 0, 0, 77}, ""},
      {"PNG as JPEG", bare, 2, {-30, 0, 0, 77}, ""},
      {"type 0", gif, 0, {-99, 0, 0, 77}, ""},
      {"type 4", gif, 4, {-99, 0, 0, 77}, ""},
      {"2 MiB", largest, 1, {0, 100, 80, 0}, longest},
      {"2 MiB and a byte", largest + Bytes{0}, 1, {-99, 0, 0, 77}, ""},
      {"empty, after a second", {}, 1, {-30, 0, 0, 77}, ""},
  };
  for (const auto& [what, picture, type, numbers, text] : cases) {
    SCOPED_TRACE(what);
    const ScopedFile stream = Stream(picture);
    char document[kLumigramDocumentBufferBytes] = {};
    int32_t height = 0, width = 0, pop = 77;
    const int32_t status = GetXmlString(stream.get(), type, document, &height, &width, &pop);
    EXPECT_EQ((std::array{status, width, height, pop}), numbers);
    EXPECT_EQ(document, text);
  }
}

TEST(Obstacle, IsNamed) {
  const Bytes png = PngStart() + kPngEnd, box = {0, 0, 0, 32}, large(2097152);
  constexpr int kRead = 0, kWrite = 1;  // the number of the call that is refused
  // The name; the bytes; the words.
  const std::tuple<std::string, Bytes, const char*> files[] = {
      {"fake.gif", png, "holds a PNG picture; rename it to .png"},
      {"fake.png", kJpegStart + JpegFrame(), "holds a JPEG picture; rename it to .jpg"},
      {"unnamed", FirstOf(GifScreen(), 6), "holds a GIF picture; rename it to .gif"},
      {"good.JPEG", kJpegStart + JpegFrame(), ""},
      {"web.png", Text("RIFF1234WEBP"), "holds a WebP picture, which is not supported"},
      {"wave.png", Text("RIFF\1\2\3\4WAVE"), ""},
      {"bitmap.gif", Text("BM1234") + Bytes(6), "holds a BMP picture, which is not supported"},
      {"box.png", box + Text("ftypavis"), "holds an AVIF picture, which is not supported"},
      {"icon.png", {0, 0, 1, 0, 1}, "holds an ICO picture, which is not supported"},
      {"text.png", Text("\tBMW, \xE5\xA4\xA7 \xE5"), "holds text, not a picture"},
      {"latin.png", Text("caf\xE9, au lait"), ""},
      {"bytes.png", {1, 'a', 'b'}, ""},
      {kFace, {}, "empty file"},
      {"2MiB.png", large, ""},
      {"larger.png", large + Bytes{0}, "over 2 MiB"},
  };
  const TempFolder folder;
  char words[kObstacleWords];
  const auto look = [&](const std::string& name, Access access, const char* want) {
    EXPECT_EQ((FindObstacle(folder.Path(name).c_str(), access, words), std::string(words)), want);
  };
  for (const auto& [name, bytes, want] : files) {
    SCOPED_TRACE(name);
    folder.Write(name, bytes);
    look(name, Access::kWrite, want);
  }
  look(kJavaFace, Access::kRead, "empty file");
  look("missing.gif", Access::kRead, "no such file");
  look("good.JPEG/a.png", Access::kRead, "no such file");
  look(".", Access::kRead, "a folder");
  EXPECT_EQ(FindObstacle("/dev/null", Access::kRead, words), Obstacle::kNotRegular);
  for (const auto& [error, call, want] : {std::tuple(EACCES, kRead, "permission denied"),
                                          {EMFILE, kRead, ""},
                                          {EROFS, kWrite, "read-only file"},
                                          {EMFILE, kWrite, ""}}) {
    SCOPED_TRACE(want);
    const FailCalls fail("open64", call, error);
    look("good.JPEG", Access::kWrite, want);
  }
}

TEST(TagInfo, ElementsOfOneGroup) {
  std::string twelve;
  for (char c = 'a'; c < 'm'; ++c) twelve += Tag("n", std::string(1, c)) + Tag("N", "other");
  const std::string x1024(1024, 'x'), n255(255, 'n');
  // The content of the root, the tag name; the status, the contents.
  const std::tuple<std::string, std::string, int32_t, std::vector<std::string>> cases[] = {
      {twelve, "n", 0, {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"}},
      {twelve, "x", 0, {}},
      {Tag("n", "1") + Tag("n", "") + Tag("n", "3"), "n", 0, {"1"}},
      {Tag("n", x1024) + Tag("n", x1024 + "x") + Tag("n", "3"), "n", 0, {x1024}},
      {"</emoji>" + Tag("n", "behind"), "n", 0, {"behind"}},
      {Tag("n", "1") + Tag("", "2"), "", 0, {"2"}},
      {Tag(n255 + "n", "longer") + Tag(n255, "wanted"), n255, 0, {"wanted"}},
      {Tag("n", "1"), n255 + "n", -99, {}},
  };
  char results[10][1025];
  for (auto [inRoot, name, status, contents] : cases) {
    SCOPED_TRACE(inRoot.substr(0, 60));
    memset(results, 0, sizeof results);
    const ScopedFile stream = Stream(PngStart() + PngDocument("<emoji>" + inRoot) + kPngEnd);
    EXPECT_EQ(GetTagInfo(stream.get(), 3, name.c_str(), results), status);
    contents.resize(10);
    EXPECT_TRUE(std::ranges::equal(results, contents));
  }
  const ScopedFile stream = Stream(PngStart() + kPngEnd);
  EXPECT_EQ(GetTagInfo(stream.get(), 3, "n", results), -99) << "no document";
}
}  // namespace
}  // namespace lumigram::test
