// Whole operations on PNG and JPEG pictures: bytes in; status and outputs out.
#ifndef LUMIGRAM_TESTS_SUPPORT_PICTURE_CHECKS_H_
#define LUMIGRAM_TESTS_SUPPORT_PICTURE_CHECKS_H_

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

inline void CheckRead(decltype(&GetXmlStringFromPng) read, FILE* stream, int32_t wantStatus,
                      std::string_view wantText, uint32_t wantWidth, uint32_t wantHeight) {
  char text[kLumigramDocumentBufferBytes] = {};
  uint32_t height = 0, width = 0;
  EXPECT_EQ(read(stream, text, &height, &width), wantStatus);
  EXPECT_EQ(std::string_view(text), wantText);
  EXPECT_EQ(height, wantHeight);
  EXPECT_EQ(width, wantWidth);
}

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_PICTURE_CHECKS_H_
