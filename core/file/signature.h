// Determines the kind of a picture from its first bytes.
#ifndef LUMIGRAM_CORE_FILE_SIGNATURE_H_
#define LUMIGRAM_CORE_FILE_SIGNATURE_H_

#include <stdint.h>

#include <optional>
#include <span>

#include "core/base/kind.h"

namespace lumigram {

// As many bytes as the longest signature has.
inline constexpr size_t kSignatureSize = 8;

// The kind whose signature begins the bytes; none if there is no such kind. Only the first
// kSignatureSize bytes are looked at.
std::optional<Kind> KindFromSignature(std::span<const uint8_t> bytes);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_FILE_SIGNATURE_H_
