// Runs one target over files and folders of files, without a fuzzing engine: to debug a finding,
// and to replay regression inputs. Prints the number of inputs; a broken property ends the
// program. Usage: TARGET_replay [--prefixes] FILE...; with --prefixes, runs every prefix of the
// files that follow.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

#include "tests/support/bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

bool prefixes = false;

// The input ends at the end of its own heap block, so that AddressSanitizer finds a read past it.
void RunOne(const uint8_t* data, size_t size) {
  const std::vector<uint8_t> input(data, data + size);
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

int Run(const std::filesystem::path& path) {
  int count = 0;
  if (std::filesystem::is_directory(path)) {
    for (const auto& entry : std::filesystem::directory_iterator(path)) count += Run(entry.path());
    return count;
  }
  const lumigram::test::Bytes bytes = lumigram::test::ReadWhole(path.string());
  size_t size = prefixes ? 0 : bytes.size();
  for (; size <= bytes.size(); ++size, ++count) RunOne(bytes.data(), size);
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--prefixes") == 0) {
      prefixes = true;
    } else {
      count += Run(argv[i]);
    }
  }
  std::printf("%d inputs\n", count);
  return count > 0 ? 0 : 1;
}
