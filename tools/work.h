// Many pictures at once: which, by how many threads, and what came of it.
#ifndef LUMIGRAM_TOOLS_WORK_H_
#define LUMIGRAM_TOOLS_WORK_H_

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/console.h"
#include "tools/document_model.h"

namespace lumigram::tool {

struct Target {
  std::string path;
  size_t origin;                   // index of the path that led here
  std::optional<Failure> failure;  // nothing can be done with it
};

// The pictures that the paths name, in their order, each file once: a second path to the same file
// leads nowhere. Folders give, when they are to be walked, the pictures below them in the order of
// their names.
std::vector<Target> FindTargets(const std::vector<std::string>& paths, bool recursive);

// What came of one picture, and what to print.
struct Done {
  enum Kind { kFine, kLosing, kWritten, kUnchanged, kFailed, kKinds };
  Kind kind;
  std::string output;
};

struct Tally {
  size_t counts[Done::kKinds] = {};
  size_t total = 0;
  int signal = 0;  // that interrupted the work; 0: none did

  size_t Finished() const;
};

// Runs the function, which may throw Failure, for every target, on as many threads as there are
// cores. What it prints, with the separator in between, and the failures come out in the order of
// the targets. SIGINT, SIGTERM and
// SIGHUP let the pictures in work be finished and begin no others; a later one ends the process.
Tally RunAll(const std::vector<Target>& targets, const std::function<Done(const Target&)>& function,
             Console* console, const char* separator = "");

}  // namespace lumigram::tool

#endif  // LUMIGRAM_TOOLS_WORK_H_
