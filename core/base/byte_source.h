// Reads the bytes of a picture, from a stream, from the descriptor of a regular file, or from memory.
#ifndef LUMIGRAM_CORE_BASE_BYTE_SOURCE_H_
#define LUMIGRAM_CORE_BASE_BYTE_SOURCE_H_

#include <stdint.h>
#include <stdio.h>

#include <algorithm>
#include <atomic>
#include <span>
#include <string_view>

namespace lumigram {

// Whether the stream is a regular file that is open for reading only. Its buffer then holds no
// unwritten bytes, so that the descriptor and the size from fstat() can replace the stream.
bool IsReadOnlyFile(FILE* stream, int* descriptor, uint64_t* size);

// The largest file position that is accepted: ftell() returns no larger one on a 32-bit machine.
inline constexpr uint64_t kMaxPosition = INT32_MAX;

// A cursor over the bytes of a stream, a file or memory, which it borrows and never releases. Its
// functions return true or false and no status: the calling operation decides which status a false
// means.
//
// A regular file that is open for reading only is read ahead. Measure() reads a small file to its
// end; a larger one is read in pieces with pread(), without the stream. The destructor moves the
// stream to the position where the walk stopped. Every other stream (a pipe, memory, one that is
// also written) is read through stdio, exactly as far as asked, so that its position is right at
// any time.
//
// Memory may change while it is read, like an array that another thread of Java writes to. Callers
// decide by copies of the bytes only, and the fences after each copy keep the compiler from reading
// the memory a second time in place of the copy. Sizes are compared with the size that the
// constructor was given.
//
// Invariant after Measure(): Position() <= the end that it found. If the file grows later, the new
// bytes are not read.
class ByteSource {
 public:
  explicit ByteSource(FILE* stream);
  // Reads a regular file of at most kMaxPosition bytes from its start, without a stream. Counts as
  // measured.
  ByteSource(int descriptor, uint64_t size);
  // Reads at most kMaxPosition bytes of memory. Counts as measured.
  explicit ByteSource(std::span<const uint8_t> bytes);
  ~ByteSource();
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;

  // Stores the positions of the stream and of the file's end. False when the stream has no
  // position, cannot be moved back to it, or ends beyond 2,147,483,647. A source that is not
  // measured can still be read; it skips by reading.
  [[nodiscard]] bool Measure();

  // Reads exactly out.size() bytes; false on a short read.
  [[nodiscard]] bool Read(std::span<uint8_t> out) {
    if (out.size() > filled_ - next_) return ReadPastBlock(out);
    std::copy_n(held_ + next_, out.size(), out.begin());
    next_ += static_cast<uint32_t>(out.size());
    std::atomic_signal_fence(std::memory_order_acq_rel);
    return true;
  }
  [[nodiscard]] bool ReadByte(uint8_t* out) {
    if (next_ < filled_) {
      *out = held_[next_++];
      std::atomic_signal_fence(std::memory_order_acq_rel);
      return true;
    }
    return Read({out, 1});
  }
  [[nodiscard]] bool ReadBe16(uint16_t* out);
  [[nodiscard]] bool ReadBe32(uint32_t* out);

  // Moves forward, at most to the end. A skip that reaches the end returns true, and the next Read
  // is short. False only when the stream cannot seek or, if it is not measured, is short.
  [[nodiscard]] bool Skip(uint64_t n);

  // Moves back over n bytes that were read. False when the stream cannot seek.
  [[nodiscard]] bool Back(uint64_t n);

  // Stores whether the next bytes equal the text, and moves past the bytes that it has compared:
  // all of them if they are equal, else those up to the first piece of 256 bytes that differs.
  // False when there are fewer bytes than the text has. For measured sources.
  [[nodiscard]] bool Compare(std::string_view text, bool* equal);

  // Moves past the next occurrence of two bytes in a row. If there is none, moves to the end and
  // returns false.
  [[nodiscard]] bool SkipPast(uint8_t first, uint8_t second);

  // Moves to a position, at most the end, of a measured source. False when the stream cannot seek.
  [[nodiscard]] bool MoveTo(uint64_t position);

  // Moves to the position at which Measure() found the stream. False when the stream cannot seek.
  [[nodiscard]] bool Rewind() { return MoveTo(start_); }

  // Counted from the start of the file if the source is measured, else from the stream's position
  // when the source was created.
  uint64_t Position() const { return blockStart_ + next_; }
  // Bytes up to the end; 0 for a source that is not measured.
  uint64_t Remaining() const { return measured_ ? end_ - Position() : 0; }

 private:
  // A file of at most one block is read at once. Most of a larger file is skipped: the first read
  // after a skip takes one piece, and reads that continue after it take whole blocks.
  static constexpr uint32_t kBlockSize = 16384;
  static constexpr uint32_t kPieceSize = 4096;

  // Two ways to read what the block does not hold: a regular file through the block, any other
  // stream straight into the caller's memory.
  bool ReadPastBlock(std::span<uint8_t> out);
  bool ReadThroughBlock(std::span<uint8_t> out);
  bool ReadThroughStdio(std::span<uint8_t> out);
  // Two ways to fill the block: from the stream, when a small file is measured, and from the file at
  // the current position.
  size_t FillFromStream(size_t size);
  bool FillBlockHere();
  // One pread(), repeated when a signal interrupts it.
  size_t ReadSomeAt(uint64_t position, std::span<uint8_t> room) const;

  FILE* const stream_;   // null: a file without a stream, or memory
  int descriptor_ = -1;  // of a regular file that is read ahead; -1: the stream is read
  bool measured_ = false;
  uint64_t start_ = 0;
  uint64_t end_ = 0;
  uint64_t streamAt_ = 0;  // the stream's position while pread() reads its file
  // held_[0, filled_) are the source's bytes from blockStart_ on; next_ of them have been read. If
  // the stream is read, none are held, and blockStart_ is the position. Memory is held whole; of a
  // file, the block holds a part.
  const uint8_t* const held_;
  uint64_t blockStart_ = 0;
  uint32_t next_ = 0;
  uint32_t filled_ = 0;
  uint8_t block_[kBlockSize];
};

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_BYTE_SOURCE_H_
