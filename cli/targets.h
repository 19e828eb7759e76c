// The pictures that a command line names, one after the other.
#ifndef LUMIGRAM_CLI_TARGETS_H_
#define LUMIGRAM_CLI_TARGETS_H_

#include <stddef.h>

#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "cli/changes.h"
#include "cli/files.h"

namespace lumigram::cli {

struct Target {
  std::string path;
  std::optional<Failure> failure = std::nullopt;     // why this path cannot be used
  std::shared_ptr<const Changes> changes = nullptr;  // of this picture only; null: none
};

class Targets {
 public:
  virtual ~Targets() = default;
  // The next target; none at the end. Called by one thread at a time.
  virtual std::optional<Target> Next() = 0;
  // The number of all targets, unless a stop is requested meanwhile. Called by any thread.
  virtual size_t Count(const std::stop_token& stop) = 0;
};

// What is done with the pictures. Pictures that are read are targets under each of their names. One
// that is written is a target once, whatever the number of its names and of the paths to it.
enum class Purpose { kRead, kWrite };

// Finds the pictures that the paths name, in the order of the paths; for a single "-", that of
// standard input. With `recursive`, a folder
// gives the pictures below it in the order of their names; links to folders are not followed. Holds
// the names of one folder and of those above it.
std::unique_ptr<Targets> FindTargets(std::vector<std::string> paths, bool recursive,
                                     Purpose purpose);

// The target for a path that is not a folder to be walked.
Target FileTarget(const std::string& path);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_TARGETS_H_
