// Checks of whole operations on pictures: bytes in, status and outputs out.
#ifndef LUMIGRAM_TESTS_SUPPORT_PICTURE_CHECKS_H_
#define LUMIGRAM_TESTS_SUPPORT_PICTURE_CHECKS_H_

#include <gtest/gtest.h>

#include "core/base/output_buffer.h"
#include "lumigram.h"
#include "tests/support/bytes.h"

namespace lumigram::test {

using Reader = decltype(&GetXmlStringFromPng);

inline void CheckReader(const char* what, Reader read, const Bytes& picture, int32_t status,
                        std::string_view wantText, uint32_t wantWidth, uint32_t wantHeight) {
  SCOPED_TRACE(what);
  for (Opened opened : kBothWays) {
    char text[kLumigramDocumentBufferBytes] = {};
    uint32_t height = 0, width = 0;
    EXPECT_EQ(read(Stream(picture, opened).get(), text, &height, &width), status);
    EXPECT_EQ(std::string_view(text), wantText);
    EXPECT_EQ(height, wantHeight);
    EXPECT_EQ(width, wantWidth);
  }
}

// A record with blob entries (label, name, URI), from entry `first` on.
inline AttrInfo With(const std::vector<std::array<std::string, 3>>& blobs, size_t first = 0) {
  AttrInfo attr = {};
  AppExtEntry* entry = &attr.appExt[first];
  for (const auto& [label, name, uri] : blobs) {
    label.copy(entry->labelName, sizeof(entry->labelName));
    name.copy(entry->fileName, sizeof(entry->fileName));
    uri.copy(entry++->binaryDataUri, sizeof(AppExtEntry::binaryDataUri));
  }
  return attr;
}

// Checks a writer. The new picture must fit a buffer of exactly its size, and no smaller one.
template <typename Writer, typename... Record>
void CheckWriter(const char* what, Writer write, const Bytes& picture, std::string_view text,
                 int32_t status, const Bytes& want, const Record&... record) {
  SCOPED_TRACE(what);
  XmlStringInfo doc{static_cast<int32_t>(text.size()), {}};
  text.copy(doc.text, sizeof(doc.text));
  for (Opened opened : kBothWays) {
    const ScopedFile stream = Stream(picture, opened);
    Bytes out(status == 0 ? want.size() : picture.size() + 20000);
    uint32_t size = uint32_t(out.size());
    ByteSource source(stream.get());
    OutputBuffer room(out.data(), size);
    ASSERT_TRUE(source.Measure());
    EXPECT_EQ(write(source, doc, record..., room), status);
    EXPECT_TRUE(status != 0 || (room.Size() == size && out == want));
    while (status == 0 && size > 0) {
      size -= 1 + size / 200;
      Bytes less(size);
      OutputBuffer lessRoom(less.data(), size);
      ASSERT_TRUE(source.Rewind());
      EXPECT_EQ(write(source, doc, record..., lessRoom), -99);
    }
  }
}

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_PICTURE_CHECKS_H_
