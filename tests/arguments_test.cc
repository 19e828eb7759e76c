// Each pointer of a call null in turn: the functions that no whole operation hands one.
#include <gtest/gtest.h>

#include <tuple>
#include <type_traits>

#include "core/gif/gif_writer.h"
#include "core/jpeg/jpeg_writer.h"
#include "core/png/png_writer.h"
#include "tests/support/bytes.h"

namespace lumigram::test {
namespace {

template <typename Function, typename... Arguments>
void ExpectRefusesNull(int32_t status, Function function, Arguments... arguments) {
  for (size_t null = 0; null < sizeof...(arguments); ++null) {
    size_t at = 0;
    bool isNull = false;
    const auto take = [&](auto argument) {
      if (at++ != null || !std::is_pointer_v<decltype(argument)>) return argument;
      isNull = true;
      return decltype(argument){};
    };
    // Braces take them from left to right.
    const std::tuple<Arguments...> changed{take(arguments)...};
    if (isNull) {
      EXPECT_EQ(std::apply(function, changed), status) << "argument " << null;
    }
  }
}

TEST(Arguments, NullIsRefused) {
  XmlStringInfo document = {1, "x"};
  const XmlStringInfo* const doc = &document;
  const AttrInfo attr = {};
  uint8_t out[64] = {};
  uint32_t position = 8;
  char text[] = "<a></a>", name[300], content[1100];
  ExpectRefusesNull(-99, SetMetadataBlocksToGif, doc, &position, out, &attr, 64u);
  ExpectRefusesNull(-99, SetMetadataChunksToPng, doc, &position, out, &attr, 64u);
  ExpectRefusesNull(-99, SetCommentSegmentToJpg, doc, &position, out, 64u);
  ExpectRefusesNull(-99, SetChunkCrc, 0u, &position, out, 64u);
  const ScopedFile stream = Stream({});
  for (const auto copy : {GetApplicationExtensionDataFromGif, GetApplicationExtensionDataFromPng})
    ExpectRefusesNull(-99, copy, stream.get(), out, &position, "EMJ", "name");
  const auto getTagContent = [&](char* from, const char* start, const char* end) {
    return GetElementTagContent(from, start, end, name, content);
  };
  ExpectRefusesNull(-1, getTagContent, text, "<a>", "</a>");
  document.length = -1;
  EXPECT_EQ(SetMetadataChunksToPng(doc, &position, out, &attr, 64), -99);
  EXPECT_EQ(SetCommentSegmentToJpg(doc, &position, out, 64), -99);
}

}  // namespace
}  // namespace lumigram::test
