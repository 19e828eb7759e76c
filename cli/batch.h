// Runs a function over any number of pictures, in threads; signals can interrupt it.
#ifndef LUMIGRAM_CLI_BATCH_H_
#define LUMIGRAM_CLI_BATCH_H_

#include <stddef.h>

#include <functional>
#include <string>

#include "cli/console.h"
#include "cli/targets.h"

namespace lumigram::cli {

// The result for one picture, and the text to print.
struct Outcome {
  enum Type { kFine, kLosing, kWritten, kUnchanged, kNotFound, kFailed, kTypes };
  Type type;
  std::string output;
};

struct Tally {
  size_t counts[Outcome::kTypes] = {};
  size_t total = 0;  // of all targets; 0: unknown
  int signal = 0;    // the signal that interrupted the run; 0: none

  size_t Finished() const;
};

// Runs the function, which may throw Failure, for every target, on as many threads as there are
// cores, or on the caller's if there can be no others. Outputs, with the separator between them,
// and failures are printed in the order of the targets. At a time, a limited number of targets is
// in memory. After SIGINT, SIGTERM or SIGHUP, pictures in work are finished and no others are
// begun; a second signal, over a second later, ends the process. What the targets throw is thrown
// when the pictures in work are finished.
Tally RunAll(Targets* targets, const std::function<Outcome(const Target&)>& function,
             Console* console, const char* separator = "");

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_BATCH_H_
