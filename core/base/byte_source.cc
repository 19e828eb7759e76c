#include "core/base/byte_source.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/base/bytes.h"

namespace lumigram {

bool IsReadOnlyFile(FILE* stream, int* descriptor, uint64_t* size) {
  const int fd = fileno(stream);
  if (fd < 0) return false;
  const int flags = fcntl(fd, F_GETFL);
  if (flags < 0 || (flags & O_ACCMODE) != O_RDONLY) return false;
  struct stat status;
  if (fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) return false;
  *descriptor = fd;
  *size = static_cast<uint64_t>(status.st_size);
  return true;
}

ByteSource::ByteSource(FILE* stream) : stream_(stream) {}

ByteSource::~ByteSource() {
  if (descriptor_ >= 0 && Position() != start_)
    (void)fseek(stream_, static_cast<long>(Position()), SEEK_SET);
}

bool ByteSource::Measure() {
  const long start = ftell(stream_);
  if (start < 0) return false;
  int descriptor = -1;
  uint64_t end = 0;
  if (!IsReadOnlyFile(stream_, &descriptor, &end)) {
    if (fseek(stream_, 0, SEEK_END) != 0) return false;
    const long tail = ftell(stream_);
    if (fseek(stream_, start, SEEK_SET) != 0 || tail < 0) return false;
    end = static_cast<uint64_t>(tail);
  }
  start_ = static_cast<uint64_t>(start);
  if (end > kMaxPosition || start_ > kMaxPosition) return false;
  descriptor_ = descriptor;
  end_ = end > start_ ? end : start_;
  blockStart_ = start_;
  measured_ = true;
  return true;
}

bool ByteSource::Read(std::span<uint8_t> out) {
  if (measured_ && out.size() > Remaining()) return false;
  if (descriptor_ >= 0) return ReadFile(out);
  return ReadStream(out);
}

bool ByteSource::ReadStream(std::span<uint8_t> out) {
  const size_t got = fread(out.data(), 1, out.size(), stream_);
  blockStart_ += got;
  return got == out.size();
}

// Large reads go straight to where they belong, small ones through the block.
bool ByteSource::ReadFile(std::span<uint8_t> out) {
  while (!out.empty()) {
    if (next_ == filled_) {
      const bool direct = out.size() >= kBlockSize;
      uint8_t* const to = direct ? out.data() : block_;
      const size_t room = direct ? out.size() : kBlockSize;
      const uint64_t position = Position();
      const ssize_t got = pread(descriptor_, to, room, static_cast<off_t>(position));
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) return false;
      next_ = filled_ = 0;
      blockStart_ = position;
      if (direct) {
        blockStart_ += static_cast<uint64_t>(got);
        out = out.subspan(static_cast<size_t>(got));
        continue;
      }
      // Of a file that has grown, only what was measured counts.
      const uint64_t left = end_ - position;
      filled_ = static_cast<uint64_t>(got) < left ? static_cast<uint32_t>(got)
                                                  : static_cast<uint32_t>(left);
    }
    const size_t here = filled_ - next_ < out.size() ? filled_ - next_ : out.size();
    memcpy(out.data(), block_ + next_, here);
    next_ += static_cast<uint32_t>(here);
    out = out.subspan(here);
  }
  return true;
}

bool ByteSource::ReadLe16(uint16_t* out) {
  uint8_t bytes[2];
  if (!Read(bytes)) return false;
  *out = LoadLe16(bytes);
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
    if (!ReadStream({block_, step})) return false;
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

// What waits in the block is searched at once; the pair may begin there and end in the next one.
bool ByteSource::SkipPast(uint8_t first, uint8_t second) {
  uint8_t byte;
  for (bool afterFirst = false;; afterFirst = byte == first) {
    if (!afterFirst && next_ < filled_) {
      const void* hit = memchr(block_ + next_, first, filled_ - next_);
      next_ = hit == nullptr ? filled_
                             : static_cast<uint32_t>(static_cast<const uint8_t*>(hit) - block_);
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
