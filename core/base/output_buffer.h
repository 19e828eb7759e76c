// The memory in which a writer builds the new picture.
#ifndef LUMIGRAM_CORE_BASE_OUTPUT_BUFFER_H_
#define LUMIGRAM_CORE_BASE_OUTPUT_BUFFER_H_

#include <stdint.h>
#include <string.h>

#include <span>
#include <string_view>

#include "core/base/byte_source.h"
#include "core/base/bytes.h"
#include "core/base/status.h"

namespace lumigram {

// Appends to memory that it borrows. Claim() has the bounds test of the writers: it refuses an
// append that does not fit as a whole. Invariant: Size() <= capacity.
class OutputBuffer {
 public:
  OutputBuffer(uint8_t* data, uint32_t capacity) : data_(data), capacity_(capacity) {}
  OutputBuffer(const OutputBuffer&) = delete;
  OutputBuffer& operator=(const OutputBuffer&) = delete;

  // Appends n uninitialised bytes and returns the first; null, with nothing appended, when they do
  // not fit.
  [[nodiscard]] uint8_t* Claim(uint64_t n) {
    if (n > capacity_ - size_) return nullptr;
    uint8_t* room = data_ + size_;
    size_ += static_cast<uint32_t>(n);
    return room;
  }

  [[nodiscard]] bool Put(std::span<const uint8_t> bytes) {
    uint8_t* room = Claim(bytes.size());
    if (room != nullptr && !bytes.empty()) memcpy(room, bytes.data(), bytes.size());
    return room != nullptr;
  }

  [[nodiscard]] bool Put(std::string_view text) {
    return Put({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  }

  [[nodiscard]] bool PutByte(uint8_t value) { return Put({&value, 1}); }

  [[nodiscard]] bool PutBe16(uint16_t value) {
    uint8_t bytes[2];
    StoreBe16(value, bytes);
    return Put(bytes);
  }

  [[nodiscard]] bool PutBe32(uint32_t value) {
    uint8_t bytes[4];
    StoreBe32(value, bytes);
    return Put(bytes);
  }

  uint32_t Size() const { return size_; }

  // The last n bytes that were appended.
  std::span<const uint8_t> Last(uint32_t n) const { return {data_ + size_ - n, n}; }

  // For callers that do not know in advance how many bytes to keep: Room() is the room that is
  // left, KeepFirst() appends the first n bytes that the caller has put there. n is at most
  // Room().size().
  std::span<uint8_t> Room() const { return {data_ + size_, capacity_ - size_}; }
  void KeepFirst(size_t n) { size_ += static_cast<uint32_t>(n); }

 private:
  uint8_t* const data_;
  const uint32_t capacity_;
  uint32_t size_ = 0;
};

// Copies the next n bytes of a measured source. The source is checked first, so that a truncated
// picture (kMalformed) is never reported as one that does not fit (kNoRoom).
inline Status CopyBytes(ByteSource& source, uint64_t n, OutputBuffer& out) {
  if (n > source.Remaining()) return kMalformed;
  uint8_t* room = out.Claim(n);
  if (room == nullptr) return kNoRoom;
  return source.Read({room, static_cast<size_t>(n)}) ? kOk : kMalformed;
}

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_OUTPUT_BUFFER_H_
