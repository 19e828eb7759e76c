#include "core/base/byte_source.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio_ext.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "core/base/bytes.h"

namespace lumigram {
namespace {

bool IsReadOnly(FILE* stream, int descriptor) {
#ifdef __ANDROID__  // Older C libraries of Android have no __fwritable().
  (void)stream;
  const int flags = fcntl(descriptor, F_GETFL);
  return flags >= 0 && (flags & O_ACCMODE) == O_RDONLY;
#else
  (void)descriptor;
  return __fwritable(stream) == 0;
#endif
}

}  // namespace

bool IsReadOnlyFile(FILE* stream, int* descriptor, uint64_t* size) {
  const int fd = fileno(stream);
  struct stat status;
  if (fd < 0 || !IsReadOnly(stream, fd) || fstat(fd, &status) != 0 || !S_ISREG(status.st_mode))
    return false;
  *descriptor = fd;
  *size = static_cast<uint64_t>(status.st_size);
  return true;
}

ByteSource::ByteSource(FILE* stream) : stream_(stream), held_(block_) {}

ByteSource::ByteSource(int descriptor, uint64_t size)
    : stream_(nullptr), descriptor_(descriptor), measured_(true), end_(size), held_(block_) {}

ByteSource::ByteSource(std::span<const uint8_t> bytes)
    : stream_(nullptr),
      measured_(true),
      end_(bytes.size()),
      held_(bytes.data()),
      filled_(static_cast<uint32_t>(bytes.size())) {}

ByteSource::~ByteSource() {
  if (stream_ != nullptr && descriptor_ >= 0 && Position() != streamAt_)
    (void)fseek(stream_, static_cast<long>(Position()), SEEK_SET);
}

bool ByteSource::Measure() {
  if (measured_) return true;
  int descriptor = -1;
  uint64_t end = 0;
  const bool isFile = IsReadOnlyFile(stream_, &descriptor, &end);
  const uint64_t ahead = isFile && end <= kBlockSize ? FillFromStream(static_cast<size_t>(end)) : 0;
  // We read as many bytes as the file has, so the stream was at its start; no ftell() needed.
  const bool isWhole = ahead > 0 && ahead == end;
  const long at = isWhole ? static_cast<long>(end) : ftell(stream_);
  if (at < 0) return false;
  if (!isFile) {
    if (fseek(stream_, 0, SEEK_END) != 0) return false;
    const long tail = ftell(stream_);
    if (fseek(stream_, at, SEEK_SET) != 0 || tail < 0) return false;
    end = static_cast<uint64_t>(tail);
  }
  streamAt_ = static_cast<uint64_t>(at);
  const uint64_t start = streamAt_ - ahead;
  if (end > kMaxPosition || start > kMaxPosition) return false;
  descriptor_ = descriptor;
  start_ = blockStart_ = std::min(start, end);
  end_ = std::max(end, start_ + ahead);
  filled_ = static_cast<uint32_t>(ahead);
  measured_ = true;
  return true;
}

// Fills the block with up to size bytes of the stream.
size_t ByteSource::FillFromStream(size_t size) {
  const size_t got = fread(block_, 1, size, stream_);
  // Do not leave EOF or an error flag on the caller's stream.
  if (got < size) clearerr(stream_);
  return got;
}

bool ByteSource::ReadPastBlock(std::span<uint8_t> out) {
  if (measured_ && out.size() > Remaining()) return false;
  if (descriptor_ >= 0) return ReadThroughBlock(out);
  return ReadThroughStdio(out);
}

bool ByteSource::ReadThroughStdio(std::span<uint8_t> out) {
  const size_t got = fread(out.data(), 1, out.size(), stream_);
  blockStart_ += got;
  return got == out.size();
}

// Reads up to room.size() bytes; 0 at the end of the file, or when it cannot be read.
size_t ByteSource::ReadSomeAt(uint64_t position, std::span<uint8_t> room) const {
  for (;;) {
    const ssize_t got = pread(descriptor_, room.data(), room.size(), static_cast<off_t>(position));
    if (got >= 0) return static_cast<size_t>(got);
    if (errno != EINTR) return 0;
  }
}

bool ByteSource::FillBlockHere() {
  const uint64_t position = Position();
  const bool isNear = filled_ > 0 || end_ <= kBlockSize;
  const uint64_t got = ReadSomeAt(position, {block_, isNear ? kBlockSize : kPieceSize});
  blockStart_ = position;
  next_ = 0;
  // If the file has grown, only the measured bytes are used.
  filled_ = static_cast<uint32_t>(std::min(got, end_ - position));
  return filled_ > 0;
}

// Large reads go directly into out, small ones through the block.
bool ByteSource::ReadThroughBlock(std::span<uint8_t> out) {
  while (!out.empty()) {
    size_t taken = filled_ - next_;
    if (taken == 0 && out.size() >= kPieceSize) {
      taken = ReadSomeAt(Position(), out);
      blockStart_ = Position() + taken;
      next_ = filled_ = 0;
      if (taken == 0) return false;
    } else {
      if (taken == 0 && !FillBlockHere()) return false;
      taken = std::min<size_t>(filled_ - next_, out.size());
      memcpy(out.data(), held_ + next_, taken);
      next_ += static_cast<uint32_t>(taken);
    }
    out = out.subspan(taken);
  }
  return true;
}

bool ByteSource::ReadBe16(uint16_t* out) {
  uint8_t bytes[2];
  if (!Read(bytes)) return false;
  *out = LoadBe16(bytes);
  return true;
}

bool ByteSource::ReadBe32(uint32_t* out) {
  uint8_t bytes[4];
  if (!Read(bytes)) return false;
  *out = LoadBe32(bytes);
  return true;
}

bool ByteSource::Skip(uint64_t n) {
  if (measured_) return MoveTo(n < Remaining() ? Position() + n : end_);
  while (n > 0) {
    const size_t step = n < kBlockSize ? static_cast<size_t>(n) : kBlockSize;
    if (!ReadThroughStdio({block_, step})) return false;
    n -= step;
  }
  return true;
}

bool ByteSource::Compare(std::string_view text, bool* equal) {
  if (text.size() > Remaining()) return false;
  for (*equal = true; *equal && !text.empty();) {
    uint8_t piece[256];
    const size_t size = text.size() < sizeof piece ? text.size() : sizeof piece;
    if (!Read({piece, size})) return false;
    *equal = memcmp(piece, text.data(), size) == 0;
    text.remove_prefix(size);
  }
  return true;
}

// memchr() searches the bytes that are held. The pair may begin in one block and end in the next.
bool ByteSource::SkipPast(uint8_t first, uint8_t second) {
  uint8_t byte;
  for (bool afterFirst = false;; afterFirst = byte == first) {
    if (!afterFirst && next_ < filled_) {
      const void* hit = memchr(held_ + next_, first, filled_ - next_);
      next_ = hit == nullptr ? filled_
                             : static_cast<uint32_t>(static_cast<const uint8_t*>(hit) - held_);
    }
    if (!ReadByte(&byte)) return false;
    if (afterFirst && byte == second) return true;
  }
}

bool ByteSource::Back(uint64_t n) { return n <= Position() && MoveTo(Position() - n); }

bool ByteSource::MoveTo(uint64_t position) {
  if (position >= blockStart_ && position <= blockStart_ + filled_) {
    next_ = static_cast<uint32_t>(position - blockStart_);
    return true;
  }
  if (descriptor_ < 0 && fseek(stream_, static_cast<long>(position), SEEK_SET) != 0) return false;
  blockStart_ = position;
  next_ = filled_ = 0;
  return true;
}

}  // namespace lumigram
