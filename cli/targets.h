// The pictures that a command line names.
#ifndef LUMIGRAM_CLI_TARGETS_H_
#define LUMIGRAM_CLI_TARGETS_H_

#include <optional>
#include <string>
#include <vector>

#include "cli/files.h"

namespace lumigram::cli {

struct Target {
  std::string path;
  size_t origin;                   // index of the path that led here
  std::optional<Failure> failure;  // why this path cannot be used
};

// Returns the pictures that the paths name, in the order of the paths. A second path to the same
// file gives no target. With `recursive`, a folder gives the pictures below it in the order of
// their names.
std::vector<Target> FindTargets(const std::vector<std::string>& paths, bool recursive);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_TARGETS_H_
