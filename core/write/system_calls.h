// System calls on files, repeated when a signal interrupts them, and an owner for descriptors.
#ifndef LUMIGRAM_CORE_WRITE_SYSTEM_CALLS_H_
#define LUMIGRAM_CORE_WRITE_SYSTEM_CALLS_H_

#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <string.h>
#include <sys/types.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <span>

namespace lumigram {

template <typename Call>
auto Uninterrupted(Call call) {
  for (;;) {
    const auto result = call();
    if (result >= 0 || errno != EINTR) return result;
  }
}

inline int Open(const char* path, int flags, mode_t mode = 0) {
  return Uninterrupted([&] { return open(path, flags | O_CLOEXEC, mode); });
}

inline bool ReadAt(int fd, std::span<uint8_t> out, off_t at) {
  while (!out.empty()) {
    const ssize_t n = Uninterrupted([&] { return pread(fd, out.data(), out.size(), at); });
    if (n <= 0) return false;
    out = out.subspan(static_cast<size_t>(n));
    at += n;
  }
  return true;
}

// Whether the file begins with these bytes.
inline bool BeginsWith(int fd, std::span<const uint8_t> bytes) {
  uint8_t block[4096];
  for (off_t at = 0; !bytes.empty(); at += sizeof(block)) {
    const std::span<uint8_t> piece(block, std::min(sizeof(block), bytes.size()));
    if (!ReadAt(fd, piece, at) || memcmp(block, bytes.data(), piece.size()) != 0) return false;
    bytes = bytes.subspan(piece.size());
  }
  return true;
}

inline bool WriteAt(int fd, std::span<const uint8_t> bytes, off_t at) {
  while (!bytes.empty()) {
    const ssize_t n = Uninterrupted([&] { return pwrite(fd, bytes.data(), bytes.size(), at); });
    if (n <= 0) return false;
    bytes = bytes.subspan(static_cast<size_t>(n));
    at += n;
  }
  return true;
}

inline bool Cut(int fd, size_t size) {
  return Uninterrupted([&] { return ftruncate(fd, static_cast<off_t>(size)); }) == 0;
}

// True also on a file system without fsync(): it has no better way to store a file.
inline bool Sync(int fd) {
  return Uninterrupted([&] { return fsync(fd); }) == 0 || errno == EINVAL || errno == ENOSYS;
}

inline uint64_t Nanoseconds() {
  timespec now = {};
  (void)clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint64_t>(now.tv_sec) * 1'000'000'000 + static_cast<uint64_t>(now.tv_nsec);
}

class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  ~Descriptor() { (void)Close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  void Reset(int fd) {
    (void)Close();
    fd_ = fd;
  }
  int Get() const { return fd_; }
  // An interrupted close() has closed the descriptor.
  [[nodiscard]] bool Close() {
    const int fd = fd_;
    fd_ = -1;
    return fd < 0 || close(fd) == 0 || errno == EINTR;
  }

 private:
  int fd_;
};

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_WRITE_SYSTEM_CALLS_H_
