// Reads and writes whole files.
#ifndef LUMIGRAM_CLI_FILES_H_
#define LUMIGRAM_CLI_FILES_H_

#include <stdint.h>
#include <sys/types.h>

#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumigram::cli {

// Why one picture failed: a sentence, and the closest status.
class Failure : public std::runtime_error {
 public:
  Failure(int32_t status, const std::string& reason) : runtime_error(reason), code(status) {}
  int32_t code;
};

// Returns the bytes of a regular file with 1 byte to 2 MiB. Other files are not opened. Throws
// Failure.
std::vector<uint8_t> ReadRegularFile(const std::string& path);

// Writes a file, with this mode if it is new. Throws Failure. With kRefuse, a file that cannot be
// written completely is removed again.
enum class Existing { kRefuse, kOverwrite };
void WriteFile(const std::string& path, std::span<const uint8_t> bytes, mode_t mode,
               Existing existing);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_FILES_H_
