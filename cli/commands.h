// The commands of the command line.
#ifndef LUMIGRAM_CLI_COMMANDS_H_
#define LUMIGRAM_CLI_COMMANDS_H_

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "cli/batch.h"
#include "cli/console.h"
#include "cli/find.h"
#include "cli/rewrite.h"

namespace lumigram::cli {

// After a signal, the exit status is kSignalled plus the signal's number.
enum ExitStatus { kAllWell = 0, kSomeFailed = 1, kUsage = 2, kSignalled = 128 };

// A mistake of the user, found before anything was done.
class UsageError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Options {
  std::vector<std::string> paths;
  bool recursive = false;
  bool json = false, blobs = false;
  std::string name, output, from;
  std::string copyFrom, copyTo;
  std::vector<std::string> labels, removedLabels, renamedLabels, tags, removedTags, embeds;
  std::optional<std::string> category, type;
  bool filesAnywhere = false;
  RewriteOptions rewrite;
  FindOptions find;
  bool allBlobs = false;
  std::string folder;  // for all blobs

  std::string Source() const { return from == "-" ? "standard input" : from; }
};

// Each returns the exit status, and may throw UsageError.
int Show(const Options& options, Console* console);
int Set(const Options& options, Console* console);
int ShowTag(const Options& options, Console* console);
int Extract(const Options& options, Console* console);
int Check(const Options& options, Console* console);
int Clear(const Options& options, Console* console);

// Reads each target, and stores what the function makes of it, which is none if nothing changes.
// Prints what the function notes, and how many were written. Returns the exit status.
using Rewriter = std::function<std::optional<Picture>(const Target&, const Picture&,
                                                      std::vector<std::string>* notes)>;
int RewriteAll(Targets* targets, const Options& options, const Rewriter& rewrite, Console* console);

// As FindTargets(), for the paths of a command line. Throws UsageError.
std::unique_ptr<Targets> TargetsOf(const Options& options, Purpose purpose);

// Describes the numbers of the outcomes, with a word for each. The first one is there even if it
// is 0.
std::string Describe(const Tally& tally,
                     const std::vector<std::pair<Outcome::Type, const char*>>& words);

// The exit status after a run over pictures. Reports an interruption.
int ExitStatusOf(const Tally& tally, Console* console);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_COMMANDS_H_
