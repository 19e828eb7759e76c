// Calls with each of their pointers null in turn, and the words of the statuses.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <regex>
#include <set>
#include <tuple>
#include <type_traits>

#include "jni/native_methods.h"
#include "lumigram.h"
#include "tests/support/bytes.h"

namespace lumigram::test {
namespace {

// Makes each pointer argument null in turn. A nullptr argument may be null, or is only used later.
template <typename Function, typename... Arguments>
void RefusesNull(const char* name, int32_t status, Function function, Arguments... arguments) {
  for (size_t null = 0; null < (size_t{0} + ... + std::is_pointer_v<Arguments>); ++null) {
    size_t at = 0;
    const auto take = [&](auto argument) {
      if constexpr (std::is_pointer_v<decltype(argument)>)
        argument = at++ == null ? nullptr : argument;
      return argument;
    };
    // A braced list is evaluated from left to right.
    EXPECT_EQ(std::apply(function, std::tuple<Arguments...>{take(arguments)...}), status)
        << name << ", pointer " << null;
  }
}

#define REFUSES_NULL(status, function, ...) RefusesNull(#function, status, function, __VA_ARGS__)

TEST(Arguments, NullIsRefused) {
  const AttrInfo attr = {};
  uint8_t out[64] = {};
  uint32_t position = 8;
  char out8[8], text[] = "<a></a>";
  const ScopedFile stream = Stream({});
  FILE* const file = stream.get();
  FileType type = 0;
  char results[10][1025];
  AttrInfo labels = {};
  const auto record = std::make_unique<AttrInfo>();
  PictureSummary summary;
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
  REFUSES_NULL(-99, GetPictureRecord, file, 3, record.get(), &summary);
  const uint8_t* const in = out;
  size_t length = 0;
  const BlobCallback list = [](void*, const BlobInfo*) {};
  uint8_t* built = nullptr;
  REFUSES_NULL(-99, GetFileTypeFromBytes, in, sizeof out, &type);
  REFUSES_NULL(-99, GetXmlStringFromBytes, in, sizeof out, 1, text, nullptr, nullptr, nullptr);
  REFUSES_NULL(-99, GetPictureRecordFromBytes, in, sizeof out, 3, record.get(), &summary);
  REFUSES_NULL(-99, GetBlobFromBytes, in, sizeof out, 1, "", "", nullptr, size_t{0}, &length);
  REFUSES_NULL(-99, ListBlobs, file, 1, list, nullptr);
  REFUSES_NULL(-99, ListBlobsFromBytes, in, sizeof out, 1, list, nullptr);
  REFUSES_NULL(-10, SetXmlStringToBytes, in, sizeof out, 1, &attr, nullptr, &built, &length);
  REFUSES_NULL(-99, GetLabelInfo, text, &labels);
  REFUSES_NULL(-10, SetXmlStringToFile, file, "p.png", &attr, 4);
  REFUSES_NULL(-1, GetFileType, "a.gif", &type);
  REFUSES_NULL(-1, GetElementContent, text, "<a>", "</a>", nullptr);
  REFUSES_NULL(-1, GetElementTagContent, text, "<a>", "</a>", nullptr, nullptr);
  _jobjectArray array;  // the calls are refused before they use it
  _jbyteArray bytes;
  REFUSES_NULL(-10, Java_lumigram_jni_LumigramJni_getLumigramAttrInfo, nullptr, nullptr, &array,
               &array, &bytes);
  EXPECT_EQ(GetElementTagContent(text, "<a>", "</a>", out8, out8), -41) << "the name has no end";
  EXPECT_EQ(GetElementTagContent(text, "<a>", "</a>", out8, nullptr), 0);
}

TEST(StatusText, WordsOfEachStatus) {
  std::ifstream list(LUMIGRAM_SOURCE "/tests/status_words.txt");
  std::set<int32_t> listed;
  int32_t status = 0;
  for (std::string words; list >> status && std::getline(list >> std::ws, words);) {
    EXPECT_EQ(LumigramStatusText(status), words) << status;
    listed.insert(status);
  }
  const Bytes bytes = ReadWhole(LUMIGRAM_SOURCE "/include/lumigram.h");
  const std::string header(bytes.begin(), bytes.end());
  const std::regex code("enum LumigramStatus|(kLumigram[A-Za-z]+) = (-?[0-9]+)|\\};");
  std::sregex_iterator match(header.begin(), header.end(), code);
  for (++match; match->str() != "};"; ++match)
    EXPECT_TRUE(listed.contains(std::stoi(match->str(2)))) << match->str(1);
  for (int32_t unknown : {1, -6, -100}) EXPECT_STREQ(LumigramStatusText(unknown), "unknown status");
}

}  // namespace
}  // namespace lumigram::test
