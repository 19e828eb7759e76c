// Reads and writes whole files.
#ifndef LUMIGRAM_CLI_FILES_H_
#define LUMIGRAM_CLI_FILES_H_

#include <stdint.h>

#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/write/opened_picture.h"
#include "core/write/temporary_file.h"

namespace lumigram::cli {

// Why one picture failed: a sentence, and the closest status.
class Failure : public std::runtime_error {
 public:
  Failure(int32_t status, const std::string& reason) : runtime_error(reason), code(status) {}
  int32_t code;
};

// A failure with these words and the reason that errno gives.
Failure FailureOfSystem(int32_t status, const std::string& words = "");

// Opens and reads a regular file with 1 byte to 2 MiB. Other files are not opened. Throws Failure.
void OpenRegularFile(const std::string& path, OpenedPicture::Purpose purpose, OpenedPicture* file);

// Returns the bytes of such a file. Throws Failure.
std::vector<uint8_t> ReadRegularFile(const std::string& path);

// Whether both paths lead to one file.
bool AreSameFile(const std::string& a, const std::string& b);

// Makes the bytes the contents of a file. A regular file is replaced as pictures are, and keeps its
// mode; a new one appears under its name when it is complete; anything else, such as a pipe, is
// written to. Throws Failure; a regular file is then the old one.
void WriteFile(const std::string& path, std::span<const uint8_t> bytes);

// Gives a new file its path, unless something is there. False with errno set.
bool NameUnlessTaken(const std::string& path, NewFile* file);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_FILES_H_
