// The only code that touches a picture's stream.
#ifndef LUMIGRAM_CORE_BASE_BYTE_SOURCE_H_
#define LUMIGRAM_CORE_BASE_BYTE_SOURCE_H_

#include <stdint.h>
#include <stdio.h>

#include <algorithm>
#include <span>
#include <string_view>

namespace lumigram {

// Whether the stream is a regular file that is open for reading only. Then nothing can wait in the
// stream's buffer to be written, and its descriptor and its size, as the file's status tells them,
// can stand for the stream.
bool IsReadOnlyFile(FILE* stream, int* descriptor, uint64_t* size);

// The largest file position that is accepted: what a 32-bit machine can tell.
inline constexpr uint64_t kMaxPosition = INT32_MAX;

// A cursor over the bytes of a stream or a file that it borrows and never closes. It answers true
// or false and decides no status: the operation that called it names what a false means there.
//
// A regular file that is open for reading only is read ahead: a small one whole, when it is
// measured, a larger one past the stream, by position and in pieces. The stream is put where the
// walk stopped when the source goes out of scope. Every other stream (a pipe, memory, one that is
// also written) is read through stdio, exactly as far as asked, so it stands there at any time.
//
// Invariant, once measured: Position() <= the end that Measure() found. A file that grows meanwhile
// is not read past it.
class ByteSource {
 public:
  explicit ByteSource(FILE* stream);
  // A regular file of at most kMaxPosition bytes, from its start, without a stream. It is measured.
  ByteSource(int descriptor, uint64_t size);
  ~ByteSource();
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;

  // Notes where the stream stands and where the file ends. False when the stream cannot tell, does
  // not go back to where it stood, or ends beyond 2,147,483,647. A source that is not measured can
  // still be read; it skips by reading.
  [[nodiscard]] bool Measure();

  // Reads exactly out.size() bytes; false on a short read.
  [[nodiscard]] bool Read(std::span<uint8_t> out) {
    if (out.size() > filled_ - next_) return ReadMore(out);
    std::copy_n(block_ + next_, out.size(), out.begin());
    next_ += static_cast<uint32_t>(out.size());
    return true;
  }
  [[nodiscard]] bool ReadByte(uint8_t* out) {
    if (next_ < filled_) {
      *out = block_[next_++];
      return true;
    }
    return Read({out, 1});
  }
  [[nodiscard]] bool ReadBe16(uint16_t* out);
  [[nodiscard]] bool ReadBe32(uint32_t* out);

  // Moves forward. Past the end is true, and stops there: the next Read is short. False only when
  // the stream refuses (or, unmeasured, is short).
  [[nodiscard]] bool Skip(uint64_t n);

  // Moves back over n bytes that were read. False when the stream refuses.
  [[nodiscard]] bool Back(uint64_t n);

  // Tells whether the next bytes are the text's, and moves behind those that it has looked at: all
  // of them when they are, else a few, however long the text is. False when there are fewer bytes
  // than the text has. For measured sources.
  [[nodiscard]] bool Compare(std::string_view text, bool* equal);

  // Moves behind the next occurrence of two bytes in a row. False, at the end, when there is none.
  [[nodiscard]] bool SkipPast(uint8_t first, uint8_t second);

  // Moves to where Measure() found the stream. False when the stream refuses.
  [[nodiscard]] bool Rewind() { return MoveTo(start_); }

  // From the file's start when it was measured, else from where the stream stood.
  uint64_t Position() const { return blockStart_ + next_; }
  // Bytes up to the end; 0 for a source that is not measured.
  uint64_t Remaining() const { return measured_ ? end_ - Position() : 0; }

 private:
  // A file of up to a block is read at once. Of a larger one, of which most is skipped, a piece is
  // read, and blocks only when the walk comes to its end.
  static constexpr uint32_t kBlockSize = 16384;
  static constexpr uint32_t kPieceSize = 4096;

  size_t ReadAhead(size_t size);
  bool ReadMore(std::span<uint8_t> out);
  bool MoveTo(uint64_t position);
  bool ReadStream(std::span<uint8_t> out);
  bool ReadFile(std::span<uint8_t> out);
  size_t ReadAt(uint64_t position, std::span<uint8_t> room);
  bool Refill();

  FILE* const stream_;   // null: a file without a stream
  int descriptor_ = -1;  // of a regular file that is read ahead; -1: read through stdio
  bool measured_ = false;
  uint64_t start_ = 0;
  uint64_t end_ = 0;
  uint64_t streamAt_ = 0;  // where the stream stands; as long as a file is read past it
  // block_[0, filled_) are the file's bytes from blockStart_ on, of which next_ have been taken.
  // Through stdio the block stays empty and blockStart_ is the position.
  uint64_t blockStart_ = 0;
  uint32_t next_ = 0;
  uint32_t filled_ = 0;
  uint8_t block_[kBlockSize];
};

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_BYTE_SOURCE_H_
