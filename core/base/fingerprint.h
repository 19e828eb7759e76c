// A short value that differs, in all likelihood, when the metadata of a picture differ.
#ifndef LUMIGRAM_CORE_BASE_FINGERPRINT_H_
#define LUMIGRAM_CORE_BASE_FINGERPRINT_H_

#include <stdint.h>
#include <string.h>

#include <algorithm>
#include <string_view>

namespace lumigram {

struct FingerprintValue {
  int64_t high = 0;
  int64_t low = 0;
  friend bool operator==(const FingerprintValue&, const FingerprintValue&) = default;
};

// Takes parts, such as the name of a blob, each in pieces of any sizes: only the bytes of a part and
// the order of the parts matter. It detects changes by programs, not forgeries: whoever knows this
// code can find two pictures with one value.
class Fingerprint {
 public:
  void Add(std::string_view piece) {
    partSize_ += piece.size();
    while (!piece.empty()) {
      const size_t n = std::min(piece.size(), sizeof(word_) - held_);
      memcpy(word_ + held_, piece.data(), n);
      piece.remove_prefix(n);
      held_ += n;
      if (held_ == sizeof(word_)) Mix();
    }
  }

  void EndPart() {
    memset(word_ + held_, 0, sizeof(word_) - held_);
    Mix();
    memcpy(word_, &partSize_, sizeof(word_));
    Mix();
    partSize_ = 0;
  }

  FingerprintValue Value() const {
    return {static_cast<int64_t>(high_ ^ high_ >> 32), static_cast<int64_t>(low_ ^ low_ >> 29)};
  }

 private:
  // Two sums with different multipliers, both odd, so that no bit of a word is lost.
  void Mix() {
    uint64_t word;
    memcpy(&word, word_, sizeof(word));
    high_ = (high_ ^ word) * 0x9E3779B97F4A7C15;
    high_ ^= high_ >> 29;
    low_ = (low_ + word) * 0xC2B2AE3D27D4EB4F;
    low_ ^= low_ >> 32;
    held_ = 0;
  }

  uint64_t high_ = 1;
  uint64_t low_ = 2;
  uint64_t partSize_ = 0;
  size_t held_ = 0;  // bytes of word_ that wait for the rest of the word
  uint8_t word_[8] = {};
};

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_FINGERPRINT_H_
