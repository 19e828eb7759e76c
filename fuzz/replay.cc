// Runs one target over named files, without a fuzzing engine: to debug a finding, and to run every
// kept input again. Prints how many ran; a broken property ends the program.
#include <cstdio>
#include <filesystem>

#include "tests/support/bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

// Of a folder all files, sorted by nobody: their order means nothing.
int Run(const std::filesystem::path& path) {
  int count = 0;
  if (std::filesystem::is_directory(path)) {
    for (const auto& entry : std::filesystem::directory_iterator(path)) count += Run(entry.path());
    return count;
  }
  const lumigram::test::Bytes bytes = lumigram::test::ReadWhole(path.string());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) count += Run(argv[i]);
  std::printf("%d inputs\n", count);
  return count > 0 ? 0 : 1;
}
