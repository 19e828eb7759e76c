// The cursor over a picture's stream: block edges, clamping, and where the stream stands
// afterwards.
#include "core/base/byte_source.h"

#include <gtest/gtest.h>

#include "tests/support/bytes.h"

namespace lumigram::test {
namespace {

Bytes Counting(size_t n) {
  Bytes bytes(n);
  for (size_t i = 0; i < n; ++i) bytes[i] = static_cast<uint8_t>(i * 7 + i / 256);
  return bytes;
}

// From byte 5 on, the first piece of a large file ends at 4101, and the block behind it at 20485.
TEST(ByteSource, WalksTheSameWayBothWaysWhereverBlocksEnd) {
  for (Opened opened : kBothWays) {
    for (size_t at : {6u, 4099u, 4100u, 4101u, 20484u}) {
      SCOPED_TRACE(at);
      const Bytes bytes = Patched(Counting(40000), at - 1, {0xFF, 0xFF, 0xD9});
      const ScopedFile stream = Stream(bytes, opened);
      fseek(stream.get(), 5, SEEK_SET);
      {
        ByteSource source(stream.get());
        ASSERT_TRUE(source.Measure());
        EXPECT_EQ(source.Remaining(), 39995u);
        EXPECT_FALSE(source.Back(6)) << "before the file";
        ASSERT_TRUE(source.SkipPast(0xFF, 0xD9));
        EXPECT_EQ(source.Position(), at + 2);
        uint16_t pair;
        ASSERT_TRUE(source.Back(2) && source.ReadBe16(&pair));
        EXPECT_EQ(pair, 0xFFD9);
        // Over the next edge, and back.
        Bytes large(9000);
        ASSERT_TRUE(source.Skip(9000) && source.Read(large));
        EXPECT_EQ(large, Bytes(&bytes[at + 9002], &bytes[at + 18002]));
        ASSERT_TRUE(source.Back(9000) && source.ReadBe16(&pair));
        EXPECT_EQ(pair, large[0] << 8 | large[1]);
        EXPECT_FALSE(source.SkipPast(0xFF, 0xD9));
        EXPECT_EQ(source.Remaining(), 0u);
        ASSERT_TRUE(source.Rewind());
        ASSERT_TRUE(source.Skip(UINT64_MAX)) << "a skip past the end stops there";
        ASSERT_TRUE(source.Back(8999));
        EXPECT_FALSE(source.Read(large));
      }
      EXPECT_EQ(ftell(stream.get()), 31001) << "the stream stands where the walk stopped";
    }
  }
}

TEST(ByteSource, ReadsAPipeExactlyAsFarAsAsked) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ASSERT_EQ(write(ends[1], "abcdef", 6), 6);
  close(ends[1]);
  ScopedFile stream(fdopen(ends[0], "rb"));
  ByteSource source(stream.get());
  EXPECT_FALSE(source.Measure());
  uint8_t byte;
  ASSERT_TRUE(source.Skip(2) && source.ReadByte(&byte));
  EXPECT_EQ(byte, 'c');
  EXPECT_EQ(fgetc(stream.get()), 'd');
}

TEST(ByteSource, AFileThatChangesBetweenMeasuringAndReading) {
  const TempFolder folder;
  const std::string path = folder.Write("a", Counting(100));
  const ScopedFile stream(fopen(path.c_str(), "rb"));
  ByteSource source(stream.get());
  ASSERT_TRUE(source.Measure());
  folder.Write("a", Counting(5000));
  uint8_t byte;
  ASSERT_TRUE(source.ReadByte(&byte) && source.Skip(1000));
  EXPECT_FALSE(source.ReadByte(&byte)) << "growth is not seen";
  ASSERT_TRUE(source.Rewind());
  folder.Write("a", {});
  Bytes more(101);
  EXPECT_FALSE(source.Read(more));
}

}  // namespace
}  // namespace lumigram::test
