// Base64 with padding and without line ends (RFC 4648, section 4).
#ifndef LUMIGRAM_CLI_BASE64_H_
#define LUMIGRAM_CLI_BASE64_H_

#include <optional>
#include <string>
#include <string_view>

namespace lumigram::cli {

std::string ToBase64(std::string_view bytes);

// Returns the bytes whose one encoding is the text; none when there are no such bytes.
std::optional<std::string> FromBase64(std::string_view text);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_BASE64_H_
