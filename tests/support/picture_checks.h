// Whole operations on PNG and JPEG pictures: bytes in; status and outputs out.
#ifndef LUMIGRAM_TESTS_SUPPORT_PICTURE_CHECKS_H_
#define LUMIGRAM_TESTS_SUPPORT_PICTURE_CHECKS_H_

#include <gtest/gtest.h>

#include <functional>

#include "lumigram.h"
#include "tests/support/bytes.h"

namespace lumigram::test {

// The shortest document that both containers take, or one of the size.
inline std::string Document(size_t size = 8) {
  std::string text = "<emoji>";
  text.resize(size, '.');
  return text;
}

inline void CheckRead(decltype(&GetXmlStringFromPng) read, FILE* stream, int32_t wantStatus,
                      std::string_view wantText, uint32_t wantWidth, uint32_t wantHeight) {
  char text[kLumigramDocumentBufferBytes] = {};
  uint32_t height = 0, width = 0;
  EXPECT_EQ(read(stream, text, &height, &width), wantStatus);
  EXPECT_EQ(std::string_view(text), wantText);
  EXPECT_EQ(height, wantHeight);
  EXPECT_EQ(width, wantWidth);
}

inline XmlStringInfo Record(std::string_view text) {
  XmlStringInfo record{static_cast<int32_t>(text.size()), {}};
  text.copy(record.text, sizeof(record.text));
  return record;
}

using Write = std::function<int32_t(FILE*, uint8_t* out, uint32_t* outLength, uint32_t capacity)>;

// A new picture must fit room of exactly its size, and be refused by any smaller one.
inline void CheckWrite(const Write& write, const Bytes& picture, int32_t status,
                       const Bytes& want = {}) {
  for (Opened opened : kBothWays) {
    Bytes out(status == 0 ? want.size() : picture.size() + 20000);
    uint32_t length = 7, room = uint32_t(out.size());
    EXPECT_EQ(write(Stream(picture, opened).get(), out.data(), &length, room), status);
    EXPECT_EQ(length, status == 0 ? room : 7);
    if (status != 0) continue;
    EXPECT_EQ(out, want);
    while (room > 0) {
      room -= 1 + std::min(room - 1, uint32_t(out.size()) / 200);
      Bytes small(room + 8);
      EXPECT_EQ(write(Stream(picture, opened).get(), small.data(), &length, room), -99);
      EXPECT_EQ(Bytes(small.end() - 8, small.end()), Bytes(8)) << "written over its end";
    }
  }
}

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_PICTURE_CHECKS_H_
