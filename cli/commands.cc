#include "cli/commands.h"

#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "cli/batch.h"
#include "cli/change_file.h"
#include "cli/changes.h"
#include "cli/extract_all.h"
#include "cli/json.h"
#include "cli/spelling.h"
#include "cli/update.h"
#include "core/base/status.h"

namespace lumigram::cli {
namespace {

bool IsStandardInput(const Options& options) {
  return options.paths.size() == 1 && options.paths[0] == kStandardInput;
}

std::string TextOf(const std::vector<uint8_t>& bytes) { return {bytes.begin(), bytes.end()}; }

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
  for (const std::string& words : options.removedLabels) {
    changes.removedLabels.push_back(ParseWords("--remove-label", words, ParseText));
  }
  for (const std::string& words : options.renamedLabels) {
    changes.renamedLabels.push_back(ParseWords("--rename-label", words, ParseRenaming));
  }
  for (const std::string& words : options.labels) {
    changes.labels.push_back(ParseWords("--label", words, ParseLabel));
  }
  for (const std::string& words : options.tags) {
    changes.tags.push_back(ParseWords("--tag", words, ParseTag));
  }
  for (const std::string& words : options.removedTags) {
    changes.tags.push_back({ParseWords("--remove-tag", words, ParseText), "", nullptr});
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

// ---- set --from ---------------------------------------------------------------------------------

// The changes of the command line are applied after those of the file.
void AddOptions(const Changes& named, Changes* changes) {
  changes->removedLabels = named.removedLabels;
  changes->renamedLabels = named.renamedLabels;
  changes->labels = named.labels;
  changes->tags = named.tags;
  if (named.category) changes->category = named.category;
  if (named.type) changes->type = named.type;
}

// The pictures that the objects of a file name.
class EntryTargets : public Targets {
 public:
  EntryTargets(const Options& options, Changes named)
      : source_(options.Source()),
        named_(std::move(named)),
        file_(options.from, options.filesAnywhere, options.paths.empty()) {}

  std::optional<Target> Next() override {
    try {
      auto entry = file_.Next();
      if (!entry) return std::nullopt;
      AddOptions(named_, &entry->changes);
      Target target = FileTarget(entry->path);
      target.changes = std::make_shared<const Changes>(std::move(entry->changes));
      return target;
    } catch (const Failure& failure) {
      return Target{source_, failure};
    }
  }
  size_t Count(const std::stop_token&) override { return file_.Count(); }

 private:
  const std::string source_;
  const Changes named_;
  ChangeFile file_;
};

std::unique_ptr<Targets> OpenChangeFile(const Options& options, const Changes& named) {
  try {
    return std::make_unique<EntryTargets>(options, named);
  } catch (const Failure& failure) {
    throw UsageError(options.Source() + ": " + failure.what());
  } catch (const std::bad_alloc&) {
    throw UsageError(options.Source() + ": no memory");
  }
}

// The changes of the only object.
Changes OnlyChanges(const Options& options, Targets* objects) {
  const auto target = objects->Next();
  if (target && target->changes) return *target->changes;
  throw UsageError(options.Source() + ": the file has changed while it was read");
}

// ---- extract ------------------------------------------------------------------------------------

const Blob& FindBlob(const Picture& picture, const std::string& label, const std::string& name) {
  for (const Blob& blob : picture.blobs) {
    if (ToUtf8(blob.label).starts_with(ToUtf8(label)) && ToUtf8(blob.name) == ToUtf8(name)) {
      return blob;
    }
  }
  throw Failure(kBadBlob, "no blob " + Quoted(name) + " labelled " + Quoted(label));
}

}  // namespace

std::unique_ptr<Targets> TargetsOf(const Options& options, Purpose purpose) {
  const auto count = std::count(options.paths.begin(), options.paths.end(), kStandardInput);
  const bool isAlone = options.paths.size() == 1 && !options.recursive;
  if (count > 0 && (!isAlone || !options.rewrite.backupSuffix.empty() || options.from == "-")) {
    throw UsageError(
        "- is standard input: the only path, without -r, --backup and --from -; ./- "
        "is a file");
  }
  return FindTargets(options.paths, options.recursive, purpose);
}

std::string Describe(const Tally& tally,
                     const std::vector<std::pair<Outcome::Type, const char*>>& words) {
  std::string line;
  for (const auto& [kind, word] : words) {
    const size_t count = tally.counts[kind];
    if (count == 0 && kind != words.front().first) continue;
    line += (line.empty() ? "" : ", ") + std::to_string(count) + " " + word;
  }
  return line;
}

int ExitStatusOf(const Tally& tally, Console* console) {
  if (tally.signal != 0) {
    const std::string of = tally.total == 0 ? "" : " of " + std::to_string(tally.total);
    console->Complain("interrupted: " + std::to_string(tally.Finished()) + of +
                      " pictures are done");
    return kSignalled + tally.signal;
  }
  return tally.counts[Outcome::kFailed] + tally.counts[Outcome::kLosing] == 0 ? kAllWell
                                                                              : kSomeFailed;
}

// Rewrites a picture without storing it. The output is the new picture, or describes the change.
static Outcome ShowRewrite(const std::string& path, bool passesOn,
                           const std::function<std::optional<Picture>(const Picture&)>& rewrite,
                           const Console& console) {
  const Picture picture = ReadPicture(path);
  const std::optional<Picture> built = rewrite(picture);
  Outcome outcome = {built ? Outcome::kWritten : Outcome::kUnchanged, ""};
  if (passesOn) {
    outcome.output = TextOf(built ? built->bytes : picture.bytes);
  } else if (built) {
    outcome.output = console.DescribeChange(path, picture, *built);
  }
  return outcome;
}

int RewriteAll(Targets* targets, const Options& options, const Rewriter& rewrite,
               Console* console) {
  const bool dryRun = options.rewrite.dryRun;
  const bool passesOn = IsStandardInput(options) && !dryRun;
  if (passesOn && console->IsTerminal()) {
    throw UsageError("a picture is not written to a terminal; redirect standard output");
  }
  signal(SIGPIPE, SIG_IGN);  // Rewrite all pictures even if nobody reads the output.
  const auto one = [&](const Target& target) -> Outcome {
    std::vector<std::string> notes;
    const auto rewriteThis = [&](const Picture& picture) {
      notes.clear();
      return rewrite(target, picture, &notes);
    };
    Outcome outcome = {Outcome::kUnchanged, ""};
    if (dryRun || passesOn) {
      outcome = ShowRewrite(target.path, passesOn, rewriteThis, *console);
    } else if (UpdatePicture(target.path, options.rewrite.backupSuffix, rewriteThis)) {
      outcome.type = Outcome::kWritten;
    }
    for (const std::string& note : notes) {
      const std::string line = target.path + ": note: " + note;
      if (passesOn) {
        console->Complain(line);
      } else {
        outcome.output += Printable(line) + "\n";
      }
    }
    return outcome;
  };
  const Tally tally = RunAll(targets, one, console);
  const std::string summary =
      Describe(tally, {{Outcome::kWritten, dryRun ? "would be written" : "written"},
                       {Outcome::kUnchanged, "unchanged"},
                       {Outcome::kFailed, "failed"}});
  if (passesOn) {
    console->Flush();
    if (ferror(stdout) == 0) console->Complain(summary);
  } else {
    console->Print(summary + "\n");
  }
  return ExitStatusOf(tally, console);
}

int Show(const Options& options, Console* console) {
  const auto toJson = [&](const Target& target, const Picture& picture) {
    const std::string json = ToJson(target.path, picture, options.blobs);
    return console->IsTerminal() ? PrintableJson(json) : json;
  };
  const auto show = [&](const Target& target) -> Outcome {
    const Picture picture = ReadPicture(target.path);
    return {Outcome::kFine,
            options.json ? toJson(target, picture) : console->Describe(target.path, picture)};
  };
  const auto targets = TargetsOf(options, Purpose::kRead);
  if (!options.json) return ExitStatusOf(RunAll(targets.get(), show, console), console);
  console->Print("[\n");
  const Tally tally = RunAll(targets.get(), show, console, ",\n");
  console->Print(tally.counts[Outcome::kFine] == 0 ? "]\n" : "\n]\n");
  return ExitStatusOf(tally, console);
}

int Set(const Options& options, Console* console) {
  Changes named = ParseChanges(options);
  std::unique_ptr<Targets> targets;
  if (options.from.empty()) {
    if (named.Empty() && !options.rewrite.replace) throw UsageError("set: nothing to change");
    if (options.paths.empty()) throw UsageError("set: PATHS are missing");
  } else {
    targets = OpenChangeFile(options, named);
  }
  if (!options.paths.empty()) {
    if (targets) named = OnlyChanges(options, targets.get());
    targets = TargetsOf(options, Purpose::kWrite);
  }
  const auto set = [&](const Target& target, const Picture& picture,
                       std::vector<std::string>* notes) {
    const Changes& changes = target.changes ? *target.changes : named;
    auto built = SetPicture(picture, changes, options.rewrite);
    if (changes.allBlobs) *notes = FindMissingBlobs(built ? *built : picture, *changes.allBlobs);
    return built;
  };
  return RewriteAll(targets.get(), options, set, console);
}

// Prints the contents of all tags of one name, one on each line. The contents of a single picture
// are printed as they are, unless on a terminal.
int ShowTag(const Options& options, Console* console) {
  const std::string name = ToUtf8(options.name);
  if (name.find('=') != std::string::npos) {
    throw UsageError("tag: " + Quoted(name) + " is not a tag's name; set --tag changes tags");
  }
  const bool many = options.recursive || options.paths.size() > 1;
  const auto line = [&](const std::string& path, const std::string& content) {
    if (console->IsTerminal()) return (many ? Printable(path) + ": " : "") + Printable(content);
    return many ? Escaped(path) + "\t" + Escaped(content) : ToUtf8(content);
  };
  const auto list = [&](const Target& target) -> Outcome {
    Outcome outcome = {Outcome::kFine, ""};
    const Picture picture = ReadPicture(target.path);
    for (const Tag& tag : picture.GetDocument().tags) {
      if (ToUtf8(tag.name) == name) outcome.output += line(target.path, tag.content) + "\n";
    }
    return outcome;
  };
  const auto targets = TargetsOf(options, Purpose::kRead);
  return ExitStatusOf(RunAll(targets.get(), list, console), console);
}

int Extract(const Options& options, Console* console) {
  if (options.allBlobs) return ExtractAll(options, console);
  if (options.paths.size() != 3) {
    throw UsageError("extract: expected LABEL NAME PICTURE, or --all -d FOLDER PICTURES");
  }
  if (!options.folder.empty()) throw UsageError("extract: -d is for --all");
  const std::string &label = options.paths[0], &name = options.paths[1], &source = options.paths[2];
  const bool toStandardOutput = options.output.empty() || options.output == "-";
  if (toStandardOutput && console->IsTerminal()) {
    throw UsageError("extract: a blob is not written to a terminal; name a file with -o");
  }
  const bool isInput = source == kStandardInput;
  const std::string* path = &source;  // of what fails
  try {
    const Picture picture = ReadPicture(source);
    const std::string& bytes = FindBlob(picture, label, name).bytes;
    if (!toStandardOutput) path = &options.output;
    // A redirection has opened the file of standard output, so that it cannot be replaced.
    if (toStandardOutput || AreSameFile(options.output, "/dev/stdout")) {
      console->Print(bytes);
    } else if (AreSameFile(options.output, isInput ? "/dev/stdin" : source)) {
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
  const auto targets = TargetsOf(options, Purpose::kRead);
  const auto check = [](const Target& target) -> Outcome {
    Outcome outcome = {Outcome::kFine, ""};
    const Picture picture = ReadPicture(target.path);
    for (const Finding& finding : picture.reading.findings) {
      constexpr const char* kKinds[] = {"note", "missing", "not read", "not read", "not kept"};
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
  const Tally tally = RunAll(targets.get(), check, console);
  console->Print(Describe(tally, {{Outcome::kFine, "fine"},
                                  {Outcome::kLosing, "with losses"},
                                  {Outcome::kFailed, "failed"}}) +
                 "\n");
  return ExitStatusOf(tally, console);
}

int Clear(const Options& options, Console* console) {
  const auto clear = [&options](const Target&, const Picture& picture, std::vector<std::string>*) {
    return ClearPicture(picture, options.rewrite);
  };
  const auto targets = TargetsOf(options, Purpose::kWrite);
  return RewriteAll(targets.get(), options, clear, console);
}

}  // namespace lumigram::cli
