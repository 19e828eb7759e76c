// The reader is picked by the type, under the size limit; one tag group out of a picture.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "lumigram.h"
#include "tests/support/documents.h"
#include "tests/support/gif_builder.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

struct Extracted {
  std::vector<char> document = std::vector<char>(10241);
  int32_t height = 0, width = 0, pop = 77;
};

int32_t Extract(const Bytes& picture, FileType type, Extracted* out) {
  const ScopedFile stream = Stream(picture);
  return GetXmlString(stream.get(), type, out->document.data(), &out->height, &out->width,
                      &out->pop);
}

TEST(Extraction, PicksTheReaderAndTellsAPictureWithoutDocument) {
  const struct {
    Bytes with, without;
    FileType type;
    int32_t height, width, pop;
  } cases[] = {
      {GifScreen() + GifComment(Document()) + kGifEnd, GifScreen() + kGifEnd, 1, 80, 100, 0},
      {kJpegStart + JpegComment(Document()) + JpegFrame() + kJpegEnd,
       kJpegStart + JpegFrame() + kJpegEnd, 2, 16, 32, 77},
      {PngStart() + PngDocument(Document()) + kPngEnd, PngStart() + kPngEnd, 3, 16, 32, 77},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.type);
    Extracted with, without, other;
    EXPECT_EQ(Extract(c.with, c.type, &with), 0);
    EXPECT_EQ(with.document.data(), Document());
    EXPECT_EQ(Extract(c.without, c.type, &without), -5);
    EXPECT_STREQ(without.document.data(), "");
    for (const Extracted& e : {with, without})
      EXPECT_EQ(std::tuple(e.height, e.width, e.pop), std::tuple(c.height, c.width, c.pop));
    EXPECT_EQ(Extract(c.with, c.type == 3 ? 2 : 3, &other), -30) << "only the type decides";
  }
}

TEST(Extraction, Limits) {
  Extracted out;
  const Bytes gif = GifScreen() + GifComment(Document(10240)) + kGifEnd;
  Bytes padded = gif;
  padded.resize(2097152);  // behind the trailer
  EXPECT_EQ(Extract(padded, 1, &out), 0);
  EXPECT_EQ(strlen(out.document.data()), 10240u);
  padded.push_back(0);
  out = Extracted();
  EXPECT_EQ(Extract(padded, 1, &out), -99);
  EXPECT_EQ(out.width, 0) << "never read";
  for (FileType type : {-1, 0, 4}) EXPECT_EQ(Extract(gif, type, &out), -99);
  EXPECT_EQ(Extract({}, 1, &out), -30) << "after a second";
  EXPECT_EQ(GetXmlString(nullptr, 1, out.document.data(), &out.height, &out.width, &out.pop), -99);
  const ScopedFile stream = Stream(gif);
  EXPECT_EQ(GetXmlString(stream.get(), 1, nullptr, &out.height, &out.width, &out.pop), -99);
}

using Results = char[10][1025];

int32_t Lookup(const std::string& document, const std::string& name, Results* results) {
  memset(*results, 0, sizeof *results);
  const ScopedFile stream = Stream(PngStart() + PngDocument(document) + kPngEnd);
  return GetTagInfo(stream.get(), 3, name.c_str(), *results);
}

TEST(TagInfo, ElementsOfOneGroup) {
  std::string twelve;
  for (char c = 'a'; c < 'm'; ++c) twelve += Tag("n", std::string(1, c)) + Tag("N", "other");
  const std::string x1024(1024, 'x');
  const struct {
    std::string inRoot, name;
    std::vector<std::string> contents;
  } cases[] = {
      {twelve, "n", {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"}},
      {twelve, "x", {}},
      {Tag("n", "1") + Tag("n", "") + Tag("n", "3"), "n", {"1"}},
      {Tag("n", x1024) + Tag("n", x1024 + "x") + Tag("n", "3"), "n", {x1024}},
      {"</emoji>" + Tag("n", "behind"), "n", {"behind"}},
      {Tag("n", "1") + Tag("", "2"), "", {"2"}},
  };
  for (auto c : cases) {
    SCOPED_TRACE(c.inRoot.substr(0, 60));
    Results results;
    ASSERT_EQ(Lookup("<emoji>" + c.inRoot, c.name, &results), 0);
    c.contents.resize(10);
    EXPECT_TRUE(std::ranges::equal(results, c.contents));
  }
}

TEST(TagInfo, LongNamesAndFailures) {
  Results results;
  for (size_t size : {244u, 245u, 255u}) {
    const std::string name(size, 'n');
    const std::string document = "<emoji>" + Tag(name + "n", "longer") + Tag(name, "wanted");
    ASSERT_EQ(Lookup(document, name, &results), 0);
    EXPECT_STREQ(results[0], "wanted") << size;
  }
  EXPECT_EQ(Lookup("<emoji>" + Tag("n", "1"), std::string(256, 'n'), &results), -99);
  const ScopedFile stream = Stream(PngStart() + kPngEnd);
  EXPECT_EQ(GetTagInfo(stream.get(), 3, "n", results), -99) << "no document";
  EXPECT_EQ(GetTagInfo(nullptr, 3, "n", results), -99);
  EXPECT_EQ(GetTagInfo(stream.get(), 4, "n", results), -99);
  EXPECT_EQ(GetTagInfo(stream.get(), 3, nullptr, results), -99);
  EXPECT_EQ(GetTagInfo(stream.get(), 3, "n", nullptr), -99);
}

}  // namespace
}  // namespace lumigram::test
