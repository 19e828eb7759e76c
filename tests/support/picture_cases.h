// Whole operations on PNG and JPEG pictures, as tables: bytes in; status and outputs out.
#ifndef LUMIGRAM_TESTS_SUPPORT_PICTURE_CASES_H_
#define LUMIGRAM_TESTS_SUPPORT_PICTURE_CASES_H_

#include <gtest/gtest.h>

#include "lumigram.h"
#include "tests/support/bytes.h"

namespace lumigram::test {

// The shortest document that both containers take, or one of the size.
inline std::string Document(size_t size = 8) {
  std::string text = "<emoji>";
  text.resize(size, '.');
  return text;
}

struct ReadCase {
  const char* name;
  Bytes picture;
  int32_t status;
  std::string text;
  uint32_t width = 32;
  uint32_t height = 16;
};

using Reader = decltype(&GetXmlStringFromPng);

inline void CheckRead(Reader reader, const ReadCase& c, FILE* stream) {
  SCOPED_TRACE(c.name);
  char text[kLumigramDocumentBufferBytes] = {};
  uint32_t height = 0, width = 0;
  EXPECT_EQ(reader(stream, text, &height, &width), c.status);
  EXPECT_EQ(text, c.text);
  EXPECT_EQ(height, c.height);
  EXPECT_EQ(width, c.width);
}

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_PICTURE_CASES_H_
