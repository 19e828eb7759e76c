#include "cli/commands.h"

#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>

#include <functional>
#include <utility>
#include <vector>

#include "cli/batch.h"
#include "cli/changes.h"
#include "cli/json.h"
#include "cli/spelling.h"
#include "cli/update.h"
#include "core/base/status.h"

namespace lumigram::cli {
namespace {

// ---- running over pictures ----------------------------------------------------------------------

int ExitStatusOf(const Tally& tally, Console* console) {
  if (tally.signal != 0) {
    console->Complain("interrupted: " + std::to_string(tally.Finished()) + " of " +
                      std::to_string(tally.total) + " pictures are done");
    return kSignalled + tally.signal;
  }
  return tally.counts[Outcome::kFailed] + tally.counts[Outcome::kLosing] == 0 ? kAllWell
                                                                              : kSomeFailed;
}

void PrintTally(const Tally& tally, const std::vector<std::pair<Outcome::Type, const char*>>& words,
                Console* console) {
  std::string line;
  for (const auto& [kind, word] : words) {
    const size_t count = tally.counts[kind];
    if (count == 0 && kind != words.front().first) continue;
    line += (line.empty() ? "" : ", ") + std::to_string(count) + " " + word;
  }
  console->Print(line + "\n");
}

// ---- rewriting ----------------------------------------------------------------------------------

using Rewriter = std::function<std::optional<Picture>(const Target&, const Picture&)>;

int RewriteAll(const std::vector<Target>& targets, const Options& options, const Rewriter& rewrite,
               Console* console) {
  const bool dryRun = options.rewrite.dryRun;
  signal(SIGPIPE, SIG_IGN);  // Rewrite all pictures even if nobody reads the output.
  const auto one = [&](const Target& target) -> Outcome {
    const auto rewriteThis = [&](const Picture& picture) { return rewrite(target, picture); };
    if (!dryRun) {
      const bool stored = UpdatePicture(target.path, options.rewrite.backupSuffix, rewriteThis);
      return {stored ? Outcome::kWritten : Outcome::kUnchanged, ""};
    }
    const Picture picture = ReadPicture(target.path);
    const std::optional<Picture> built = rewriteThis(picture);
    if (!built) return {Outcome::kUnchanged, ""};
    return {Outcome::kWritten, console->DescribeChange(target.path, picture, *built)};
  };
  const Tally tally = RunAll(targets, one, console);
  PrintTally(tally,
             {{Outcome::kWritten, dryRun ? "would be written" : "written"},
              {Outcome::kUnchanged, "unchanged"},
              {Outcome::kFailed, "failed"}},
             console);
  return ExitStatusOf(tally, console);
}

template <typename Function>
auto ParseWords(const char* option, const std::string& words, Function function) {
  try {
    return function(words);
  } catch (const Failure& failure) {
    throw UsageError(std::string(option) + " " + Quoted(words) + ": " + failure.what());
  }
}

Changes ParseChanges(const Options& options) {
  Changes changes;
  if (options.category) changes.category = ParseWords("--category", *options.category, ParseText);
  if (options.type) changes.type = ParseWords("--type", *options.type, ParseText);
  for (const std::string& words : options.labels) {
    changes.labels.push_back(ParseWords("--label", words, ParseLabel));
  }
  for (const std::string& words : options.tags) {
    changes.tags.push_back(ParseWords("--tag", words, ParseTag));
  }
  for (const std::string& words : options.embeds) {
    changes.tags.push_back(ParseWords("--embed", words, ParseEmbed));
  }
  try {
    RequireWritable(changes);
  } catch (const Failure& failure) {
    throw UsageError(failure.what());
  }
  return changes;
}

std::string ReadAll(const Options& options) {
  const bool fromInput = options.from == "-";
  const ScopedFile opened(fromInput ? nullptr : fopen(options.from.c_str(), "rbe"));
  FILE* const input = fromInput ? stdin : opened.get();
  std::string text;
  char block[4096];
  if (input != nullptr) {
    while (const size_t size = fread(block, 1, sizeof block, input)) text.append(block, size);
  }
  if (input != nullptr && !ferror(input)) return text;
  throw UsageError(options.Source() + ": " + strerror(errno));
}

std::vector<JsonEntry> ReadEntries(const Options& options) {
  try {
    return ParseJson(ReadAll(options));
  } catch (const Failure& failure) {
    throw UsageError(options.Source() + ": " + failure.what());
  }
}

// One object is for all paths of the command line; without paths, each object has its own.
std::vector<Target> FindEntryTargets(const Options& options,
                                     const std::vector<JsonEntry>& entries) {
  if (!options.paths.empty()) {
    if (entries.size() == 1) return FindTargets(options.paths, options.recursive);
    throw UsageError(options.Source() + ": expected one object for the paths given, found " +
                     std::to_string(entries.size()));
  }
  std::vector<std::string> paths;
  for (const JsonEntry& entry : entries) {
    if (entry.path.empty()) {
      throw UsageError(options.Source() + ": " + entry.place + ": expected a member \"path\"");
    }
    paths.push_back(entry.path);
  }
  std::vector<Target> targets = FindTargets(paths, false);
  for (size_t i = 0; i < entries.size(); ++i) {
    if (i < targets.size() && targets[i].origin == i) continue;
    throw UsageError(options.Source() + ": " + entries[i].place +
                     "/path: expected each picture once, found it again");
  }
  return targets;
}

// The changes of the command line are applied after those of the file.
void AddOptions(const Changes& named, Changes* changes) {
  changes->labels = named.labels;
  changes->tags = named.tags;
  if (named.category) changes->category = named.category;
  if (named.type) changes->type = named.type;
}

const Blob& FindBlob(const Picture& picture, const Options& options) {
  for (const Blob& blob : picture.blobs) {
    if (ToUtf8(blob.label).starts_with(ToUtf8(options.label)) &&
        ToUtf8(blob.name) == ToUtf8(options.name)) {
      return blob;
    }
  }
  throw Failure(kBadBlob, "no blob " + Quoted(options.name) + " labelled " + Quoted(options.label));
}

}  // namespace

int Show(const Options& options, Console* console) {
  const auto show = [&](const Target& target) -> Outcome {
    const Picture picture = ReadPicture(target.path);
    return {Outcome::kFine,
            options.json ? ToJson(target.path, picture) : console->Describe(target.path, picture)};
  };
  const auto targets = FindTargets(options.paths, options.recursive);
  if (!options.json) return ExitStatusOf(RunAll(targets, show, console), console);
  console->Print("[\n");
  const Tally tally = RunAll(targets, show, console, ",\n");
  console->Print(tally.counts[Outcome::kFine] == 0 ? "]\n" : "\n]\n");
  return ExitStatusOf(tally, console);
}

int Set(const Options& options, Console* console) {
  const Changes named = ParseChanges(options);
  std::vector<JsonEntry> entries(1);
  std::vector<Target> targets;
  if (options.from.empty()) {
    if (named.Empty() && !options.rewrite.replace) throw UsageError("set: nothing to change");
    if (options.paths.empty()) throw UsageError("set: PATHS are missing");
    targets = FindTargets(options.paths, options.recursive);
  } else {
    entries = ReadEntries(options);
    targets = FindEntryTargets(options, entries);
  }
  for (JsonEntry& entry : entries) AddOptions(named, &entry.changes);
  const auto set = [&](const Target& target, const Picture& picture) {
    const JsonEntry& entry = entries.size() == 1 ? entries.front() : entries[target.origin];
    return SetPicture(picture, entry.changes, options.rewrite);
  };
  return RewriteAll(targets, options, set, console);
}

// Prints the contents of all tags of one name, one on each line.
int ShowTag(const Options& options, Console* console) {
  const auto targets = FindTargets(options.paths, options.recursive);
  const bool many = options.recursive || targets.size() > 1;
  const std::string name = ToUtf8(options.name);
  const auto list = [&](const Target& target) -> Outcome {
    Outcome outcome = {Outcome::kFine, ""};
    const Picture picture = ReadPicture(target.path);
    for (const Tag& tag : picture.GetDocument().tags) {
      if (ToUtf8(tag.name) != name) continue;
      if (many) outcome.output += Printable(target.path) + (console->IsTerminal() ? ": " : "\t");
      outcome.output +=
          (console->IsTerminal() ? Printable(tag.content) : ToUtf8(tag.content)) + "\n";
    }
    return outcome;
  };
  return ExitStatusOf(RunAll(targets, list, console), console);
}

int Extract(const Options& options, Console* console) {
  const bool toStandardOutput = options.output.empty() || options.output == "-";
  if (toStandardOutput && console->IsTerminal()) {
    throw UsageError("extract: a blob is not written to a terminal; name a file with -o");
  }
  const std::string* path = &options.picture;  // of what fails
  try {
    const Picture picture = ReadPicture(options.picture);
    const std::string& bytes = FindBlob(picture, options).bytes;
    if (!toStandardOutput) path = &options.output;
    // A redirection has opened the file of standard output, so that it cannot be replaced.
    if (toStandardOutput || AreSameFile(options.output, "/dev/stdout")) {
      console->Print(bytes);
    } else if (AreSameFile(options.output, options.picture)) {
      throw Failure(kCannotWrite, "is the picture that the blob is taken from");
    } else {
      WriteFile(options.output, {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
    }
    return kAllWell;
  } catch (const Failure& failure) {
    console->Fail(*path, failure);
    return kSomeFailed;
  }
}

int Check(const Options& options, Console* console) {
  const auto targets = FindTargets(options.paths, options.recursive);
  const auto check = [](const Target& target) -> Outcome {
    Outcome outcome = {Outcome::kFine, ""};
    const Picture picture = ReadPicture(target.path);
    for (const Finding& finding : picture.reading.findings) {
      constexpr const char* kKinds[] = {"note", "not read", "not kept"};
      outcome.output +=
          Printable(target.path + ": " + kKinds[finding.severity] + ": " + finding.text);
      if (finding.severity != Finding::kNote) {
        outcome.output += " (" + std::to_string(finding.code) + ")";
        outcome.type = Outcome::kLosing;
      }
      outcome.output += "\n";
    }
    return outcome;
  };
  const Tally tally = RunAll(targets, check, console);
  PrintTally(
      tally,
      {{Outcome::kFine, "fine"}, {Outcome::kLosing, "with losses"}, {Outcome::kFailed, "failed"}},
      console);
  return ExitStatusOf(tally, console);
}

int Clear(const Options& options, Console* console) {
  const auto clear = [&options](const Target&, const Picture& picture) {
    return ClearPicture(picture, options.rewrite);
  };
  return RewriteAll(FindTargets(options.paths, options.recursive), options, clear, console);
}

}  // namespace lumigram::cli
