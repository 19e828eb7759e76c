// Whole files, and why they could not be had.
#ifndef LUMIGRAM_TOOLS_FILES_H_
#define LUMIGRAM_TOOLS_FILES_H_

#include <stdint.h>
#include <sys/types.h>

#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumigram::tool {

// Why one picture failed: a sentence and the status nearest to it.
class Failure : public std::runtime_error {
 public:
  Failure(int32_t status, const std::string& reason) : runtime_error(reason), code(status) {}
  int32_t code;
};

// The bytes of a regular file, which is not empty and has at most 2 MiB; nothing else is opened.
// Throws Failure.
std::vector<uint8_t> ReadRegularFile(const std::string& path);

// Writes a file, of that mode when it is new. Throws Failure; a file that was new is then removed.
enum class Existing { kRefuse, kOverwrite };
void WriteFile(const std::string& path, std::span<const uint8_t> bytes, mode_t mode,
               Existing existing);

}  // namespace lumigram::tool

#endif  // LUMIGRAM_TOOLS_FILES_H_
