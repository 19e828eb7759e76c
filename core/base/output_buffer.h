// Where a writer builds the new picture: room that is claimed or refused.
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

// Appends to memory that it borrows. Claim() holds the only test for room that the writers have:
// everything they append goes through it, and what does not fit is refused whole. Invariant: Size()
// <= capacity.
class OutputBuffer {
 public:
  OutputBuffer(uint8_t* data, uint32_t capacity, uint32_t size = 0)
      : data_(data), capacity_(capacity), size_(size) {}

  // Room for n bytes behind what is there, uninitialised; null when they do not fit.
  [[nodiscard]] uint8_t* Claim(uint64_t n) {
    if (size_ > capacity_ || n > capacity_ - size_) return nullptr;
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

 private:
  uint8_t* const data_;
  const uint32_t capacity_;
  uint32_t size_;
};

// Copies the next n bytes of a measured source. The source is asked first, so that a truncated
// picture (kMalformed) is never reported as one that does not fit (kNoRoom).
inline Status CopyBytes(ByteSource& source, uint64_t n, OutputBuffer& out) {
  if (n > source.Remaining()) return kMalformed;
  uint8_t* room = out.Claim(n);
  if (room == nullptr) return kNoRoom;
  return source.Read({room, static_cast<size_t>(n)}) ? kOk : kMalformed;
}

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_OUTPUT_BUFFER_H_
