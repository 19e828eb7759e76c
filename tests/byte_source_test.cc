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

TEST(ByteSource, WalksTheSameWayBothWays) {
  const Bytes bytes = Counting(20000);
  for (Opened opened : kBothWays) {
    ScopedFile stream = Stream(bytes, opened);
    fseek(stream.get(), 5, SEEK_SET);
    {
      ByteSource source(stream.get());
      ASSERT_TRUE(source.Measure());
      EXPECT_EQ(source.Remaining(), 19995u);
      uint8_t byte;
      ASSERT_TRUE(source.ReadByte(&byte));
      EXPECT_EQ(byte, bytes[5]);
      // Over a block's edge, then a read of more than a block, then back into it.
      ASSERT_TRUE(source.Skip(4094));
      uint16_t pair;
      ASSERT_TRUE(source.ReadBe16(&pair));
      EXPECT_EQ(pair, bytes[4100] << 8 | bytes[4101]);
      Bytes large(9000);
      ASSERT_TRUE(source.Read(large));
      EXPECT_EQ(large, Bytes(bytes.begin() + 4102, bytes.begin() + 13102));
      ASSERT_TRUE(source.Back(9002));
      ASSERT_TRUE(source.ReadBe16(&pair));
      EXPECT_EQ(pair, bytes[4100] << 8 | bytes[4101]);
      EXPECT_EQ(source.Position(), 4102u);
    }
    EXPECT_EQ(ftell(stream.get()), 4102) << "the stream stands where the walk stopped";
  }
}

TEST(ByteSource, StopsAtTheMeasuredEnd) {
  const Bytes bytes = Counting(10);
  for (Opened opened : kBothWays) {
    ScopedFile stream = Stream(bytes, opened);
    ByteSource source(stream.get());
    ASSERT_TRUE(source.Measure());
    Bytes out(11);
    EXPECT_FALSE(source.Read(out));
    EXPECT_FALSE(source.Back(1)) << "nothing was read";
    ASSERT_TRUE(source.Skip(UINT64_MAX)) << "a skip past the end stops there";
    EXPECT_EQ(source.Position(), 10u);
    uint8_t byte;
    EXPECT_FALSE(source.ReadByte(&byte));
    ASSERT_TRUE(source.Rewind());
    out.resize(10);
    EXPECT_TRUE(source.Read(out));
    EXPECT_EQ(out, bytes);
  }
}

TEST(ByteSource, FindsAPairWhereverBlocksEnd) {
  for (Opened opened : kBothWays) {
    for (size_t at : {0u, 1u, 4093u, 4094u, 4095u, 4096u, 8191u, 9000u}) {
      // Halves of the pair lie before it, and one more of its first byte directly.
      Bytes bytes(at, 0xD9);
      if (at > 1) bytes[0] = bytes[at - 1] = 0xFF;
      bytes += Bytes{0xFF, 0xD9, 7};
      ScopedFile stream = Stream(bytes, opened);
      ByteSource source(stream.get());
      ASSERT_TRUE(source.Measure());
      Bytes before(at > 1 ? 1 : 0);
      ASSERT_TRUE(source.Read(before)) << "what was read before does not count";
      ASSERT_TRUE(source.SkipPast(0xFF, 0xD9)) << at;
      EXPECT_EQ(source.Position(), at + 2);
      EXPECT_FALSE(source.SkipPast(0xFF, 0xD9));
      EXPECT_EQ(source.Remaining(), 0u);
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
