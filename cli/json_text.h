// The bytes of a JSON file, which may be read several times.
#ifndef LUMIGRAM_CLI_JSON_TEXT_H_
#define LUMIGRAM_CLI_JSON_TEXT_H_

#include <stdint.h>

#include <string>

#include "core/base/scoped.h"

namespace lumigram::cli {

// Holds one block of the file in memory. All functions throw Failure when the file cannot be read.
class JsonText {
 public:
  // Opens a file; "-" is standard input. What is not a regular file is first copied, at most 1 GiB,
  // to a temporary file without a name.
  explicit JsonText(const std::string& path);

  static constexpr int kEnd = -1;
  int Peek();  // the next byte, or kEnd
  void Advance() { ++next_; }
  uint64_t Position() const { return blockStart_ + next_; }
  void Seek(uint64_t position);

  // Describes the place of the last of the first `size` bytes: "line 3, column 5".
  std::string Where(uint64_t size);

 private:
  ScopedFile file_;
  uint64_t blockStart_ = 0;
  size_t next_ = 0;
  std::string block_;  // empty: not read yet
};

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_JSON_TEXT_H_
