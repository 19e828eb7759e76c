// Texts in fixed fields: NUL-terminated within their array, cut to what fits.
#ifndef LUMIGRAM_CORE_BASE_TEXT_H_
#define LUMIGRAM_CORE_BASE_TEXT_H_

#include <stddef.h>
#include <string.h>

#include <string_view>

namespace lumigram {

// Copies as much of the text as the field holds besides its terminator. A cut may fall inside a
// character.
template <size_t N>
void CopyText(char (&field)[N], std::string_view text) {
  const size_t size = text.size() < N - 1 ? text.size() : N - 1;
  memcpy(field, text.empty() ? "" : text.data(), size);  // an empty text may have no address
  field[size] = '\0';
}

// The text of a field. A field that a C caller left without a terminator ends at its last byte.
template <size_t N>
std::string_view TextOf(const char (&field)[N]) {
  return {field, strnlen(field, N - 1)};
}

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_TEXT_H_
