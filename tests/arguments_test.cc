// Each pointer of a call null in turn, and the words for what is answered.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <tuple>
#include <type_traits>

#include "core/gif/gif_writer.h"
#include "core/jpeg/jpeg_writer.h"
#include "core/png/png_writer.h"
#include "jni/native_methods.h"
#include "tests/support/bytes.h"

namespace lumigram::test {
namespace {

// The pointers that are handed over as nullptr may be null, or are looked at later.
template <typename Function, typename... Arguments>
void RefusesNull(const char* name, int32_t status, Function function, Arguments... arguments) {
  for (size_t null = 0; null < (size_t{0} + ... + std::is_pointer_v<Arguments>); ++null) {
    size_t at = 0;
    const auto take = [&](auto argument) {
      if constexpr (std::is_pointer_v<decltype(argument)>)
        argument = at++ == null ? nullptr : argument;
      return argument;
    };
    // Braces take them from left to right.
    EXPECT_EQ(std::apply(function, std::tuple<Arguments...>{take(arguments)...}), status)
        << name << ", pointer " << null;
  }
}

#define REFUSES_NULL(status, function, ...) RefusesNull(#function, status, function, __VA_ARGS__)

TEST(Arguments, NullIsRefused) {
  XmlStringInfo document = {1, "x"};
  const XmlStringInfo* const doc = &document;
  const AttrInfo attr = {};
  uint8_t out[64] = {};
  uint32_t position = 8;
  char out8[8], text[] = "<a></a>";
  const ScopedFile stream = Stream({});
  FILE* const file = stream.get();
  ByteSource source(file);
  ASSERT_TRUE(source.Measure());
  REFUSES_NULL(-99, SetXmlStringToGif, std::ref(source), doc, out, &position, &attr, 64u);
  REFUSES_NULL(-99, SetXmlStringToPng, std::ref(source), doc, out, &position, nullptr, 64u);
  REFUSES_NULL(-99, SetXmlStringToJpg, std::ref(source), doc, out, &position, 64u);
  REFUSES_NULL(-99, SetMetadataBlocksToGif, doc, &position, out, &attr, 64u);
  REFUSES_NULL(-99, SetMetadataChunksToPng, doc, &position, out, &attr, 64u);
  REFUSES_NULL(-99, SetCommentSegmentToJpg, doc, &position, out, 64u);
  REFUSES_NULL(-99, SetChunkCrc, 0u, &position, out, 64u);
  FileType type = 0;
  char results[10][1025];
  AttrInfo labels = {};
  REFUSES_NULL(-99, GetSizeApplicationExtensionFromGif, file, &position, nullptr);
  REFUSES_NULL(-99, GetSizeApplicationExtensionFromPng, file, &position, nullptr);
  REFUSES_NULL(-99, GetApplicationExtensionDataFromGif, file, out, &position, "", "");
  REFUSES_NULL(-99, GetApplicationExtensionDataFromPng, file, out, &position, "", "");
  REFUSES_NULL(-99, GetXmlString, file, 1, text, nullptr, nullptr, nullptr);
  REFUSES_NULL(-99, GetXmlStringFromGif, file, text, nullptr, nullptr, nullptr);
  REFUSES_NULL(-99, GetXmlStringFromPng, file, text, nullptr, nullptr);
  REFUSES_NULL(-99, GetXmlStringFromJpg, file, text, nullptr, nullptr);
  REFUSES_NULL(-99, OpenFile, "a.gif", 0u, nullptr, &type);
  REFUSES_NULL(-99, GetTagInfo, file, 3, "n", results);
  REFUSES_NULL(-99, GetLabelInfo, text, &labels);
  REFUSES_NULL(-10, SetXmlStringToFile, file, "p.png", &attr, 4);
  REFUSES_NULL(-1, GetFileType, "a.gif", &type);
  REFUSES_NULL(-1, GetElementContent, text, "<a>", "</a>", nullptr);
  REFUSES_NULL(-1, GetElementTagContent, text, "<a>", "</a>", nullptr, nullptr);
  _jobjectArray array;  // refused before anything is looked at
  _jbyteArray bytes;
  REFUSES_NULL(-10, Java_lumigram_jni_LumigramJni_getLumigramAttrInfo, nullptr, nullptr, &array,
               &array, &bytes);
  EXPECT_EQ(GetElementTagContent(text, "<a>", "</a>", out8, out8), -41) << "no end of a name";
  EXPECT_EQ(GetElementTagContent(text, "<a>", "</a>", out8, nullptr), 0);
  EXPECT_EQ(SetChunkCrc(99, &position, out, 64), -99) << "more than there is";
  position = 65;
  EXPECT_EQ(SetMetadataBlocksToGif(doc, &position, out, &attr, 64), -99) << "behind the room";
  document.length = -1;
  EXPECT_EQ(SetMetadataChunksToPng(doc, &position, out, &attr, 64), -99);
  EXPECT_EQ(SetCommentSegmentToJpg(doc, &position, out, 64), -99);
}

TEST(StatusText, WordsOfEachStatus) {
  std::ifstream list(LUMIGRAM_SOURCE "/tests/status_words.txt");
  int32_t status = 0;
  for (std::string words; list >> status && std::getline(list >> std::ws, words);)
    EXPECT_EQ(LumigramStatusText(status), words) << status;
  EXPECT_EQ(status, -99) << "the last";
  for (int32_t unknown : {1, -6, -100}) EXPECT_STREQ(LumigramStatusText(unknown), "unknown status");
}

}  // namespace
}  // namespace lumigram::test
