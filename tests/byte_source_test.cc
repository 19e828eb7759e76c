// The cursor over a picture's bytes: block edges, clamping, and the stream's position afterwards.
#include "core/base/byte_source.h"

#include <gtest/gtest.h>

#include "tests/support/bytes.h"
#include "tests/support/fail_calls.h"

namespace lumigram::test {
namespace {

Bytes Counting(size_t n) {
  Bytes bytes(n);
  for (size_t i = 0; i < n; ++i) bytes[i] = static_cast<uint8_t>(i * 7 + i / 256);
  return bytes;
}

// Walks over 40,000 bytes that have FF FF D9 from byte at - 1 on. The walk starts at byte 5 or,
// in memory, at byte 0, and ends at byte 31,001.
void Walk(ByteSource& source, const Bytes& bytes, size_t at) {
  ASSERT_TRUE(source.Measure());
  EXPECT_EQ(source.Remaining(), 40000 - source.Position());
  EXPECT_FALSE(source.Back(6)) << "before the file";
  ASSERT_TRUE(source.SkipPast(0xFF, 0xD9));
  EXPECT_EQ(source.Position(), at + 2);
  uint16_t pair;
  ASSERT_TRUE(source.Back(2) && source.ReadBe16(&pair));
  EXPECT_EQ(pair, 0xFFD9);
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
  EXPECT_EQ(source.Position(), 31001u);
}

// From byte 5 on, the first piece of a large file ends at 4101, and the next block at 20485.
TEST(ByteSource, WalksTheSameWayEveryWayWhereverBlocksEnd) {
  for (size_t at : {6u, 4099u, 4100u, 4101u, 20484u}) {
    SCOPED_TRACE("the pair is at byte " + std::to_string(at));
    const Bytes bytes = Patched(Counting(40000), at - 1, {0xFF, 0xFF, 0xD9});
    ByteSource memory{bytes};
    Walk(memory, bytes, at);
    for (Opened opened : kBothWays) {
      const ScopedFile stream = Stream(bytes, opened);
      fseek(stream.get(), 5, SEEK_SET);
      {
        ByteSource source(stream.get());
        Walk(source, bytes, at);
      }
      EXPECT_EQ(ftell(stream.get()), 31001) << "the stream is where the walk stopped";
    }
  }
}

TEST(ByteSource, ReadsAPipeExactlyAsFarAsAsked) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const Bytes bytes = Counting(40000);
  ASSERT_EQ(write(ends[1], bytes.data(), 40000), 40000);
  close(ends[1]);
  ScopedFile stream(fdopen(ends[0], "rb"));
  ByteSource source(stream.get());
  EXPECT_FALSE(source.Measure());
  uint8_t byte;
  ASSERT_TRUE(source.Skip(20000) && source.ReadByte(&byte));
  EXPECT_EQ(byte, bytes[20000]);
  EXPECT_EQ(fgetc(stream.get()), bytes[20001]);
}

TEST(ByteSource, AFileThatChangesAfterItIsMeasured) {
  const TempFolder folder;
  for (size_t size : {100u, 20000u}) {
    SCOPED_TRACE(size == 100 ? "small: read whole" : "large: read in pieces");
    const ScopedFile stream(fopen(folder.Write("a", Counting(size)).c_str(), "rb"));
    fseek(stream.get(), 3, SEEK_SET);
    uint8_t byte;
    {
      ByteSource source(stream.get());
      ASSERT_TRUE(source.Measure());
      folder.Write("a", Counting(60000));
      const FailCalls interrupted("pread64", 0, EINTR);
      ASSERT_TRUE(source.Skip(size - 13) && source.ReadByte(&byte) && source.Skip(1000));
      EXPECT_FALSE(source.ReadByte(&byte)) << "new bytes are not read";
      folder.Write("a", {});
      Bytes more(6000);
      EXPECT_TRUE(source.Rewind() && !source.Read(more)) << "the rest is missing";
      EXPECT_EQ(source.ReadByte(&byte), size == 100);
      EXPECT_TRUE(source.Skip(1000));
    }
    EXPECT_FALSE(feof(stream.get())) << "the caller's stream has no end-of-file flag";
  }
}

}  // namespace
}  // namespace lumigram::test
