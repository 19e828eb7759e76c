#include "tests/support/bytes.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace lumigram::test {

ScopedFile Stream(const Bytes& bytes, Opened opened) {
  const int fd = memfd_create("picture", 0);
  FILE* written = fdopen(fd, "r+b");
  if (written == nullptr) abort();
  if (!bytes.empty() && fwrite(bytes.data(), bytes.size(), 1, written) != 1) abort();
  rewind(written);
  if (opened == Opened::kForUpdate) return ScopedFile(written);
  const std::string path = "/proc/self/fd/" + std::to_string(fd);
  FILE* read = fopen(path.c_str(), "rb");
  fclose(written);
  if (read == nullptr) abort();
  return ScopedFile(read);
}

TempFolder::TempFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "lumigram-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) abort();
  path_ = pattern;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempFolder::Write(std::string_view name, const Bytes& bytes) const {
  const std::string path = Path(name);
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
  return path;
}

Bytes ReadWhole(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), {});
}

}  // namespace lumigram::test
