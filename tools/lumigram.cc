// The command line: metadata of small emoji pictures, at a shell.
#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/base/status.h"
#include "core/document/document_format.h"
#include "tools/changes.h"
#include "tools/console.h"
#include "tools/json.h"
#include "tools/rewrite.h"
#include "tools/spelling.h"
#include "tools/work.h"

namespace lumigram::tool {
namespace {

enum ExitStatus { kAllWell = 0, kSomeFailed = 1, kUsage = 2, kSignalled = 128 };

constexpr char kAbout[] =
    "Shows and changes the metadata of small emoji pictures (GIF, PNG, JPEG): labels, category,\n"
    "type, tags and blobs. Exit status: 0 all well, 1 some failed, 2 usage.";

// What the user got wrong, before anything was done.
class UsageError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Options {
  std::vector<std::string> paths;
  bool recursive = false;
  bool json = false;
  std::string name, label, picture, output, from;
  std::vector<std::string> labels, tags, embeds;
  std::optional<std::string> category, type;
  RewriteOptions rewrite;

  std::string Source() const { return from == "-" ? "standard input" : from; }
};

// ---- running over pictures ----------------------------------------------------------------------

int ExitStatusOf(const Tally& tally, Console* console) {
  if (tally.signal != 0) {
    console->Complain("interrupted: " + std::to_string(tally.Finished()) + " of " +
                      std::to_string(tally.total) + " pictures are done");
    return kSignalled + tally.signal;
  }
  return tally.counts[Done::kFailed] + tally.counts[Done::kLosing] == 0 ? kAllWell : kSomeFailed;
}

void PrintTally(const Tally& tally, const std::vector<std::pair<Done::Kind, const char*>>& words,
                Console* console) {
  std::string line;
  for (const auto& [kind, word] : words) {
    const size_t count = tally.counts[kind];
    if (count == 0 && kind != words.front().first) continue;
    line += (line.empty() ? "" : ", ") + std::to_string(count) + " " + word;
  }
  console->Print(line + "\n");
}

int Show(const Options& options, Console* console) {
  const auto show = [&](const Target& target) -> Done {
    const Picture picture = ReadPicture(target.path);
    return {Done::kFine,
            options.json ? ToJson(target.path, picture) : console->Describe(target.path, picture)};
  };
  const auto targets = FindTargets(options.paths, options.recursive);
  if (!options.json) return ExitStatusOf(RunAll(targets, show, console), console);
  console->Print("[\n");
  const Tally tally = RunAll(targets, show, console, ",\n");
  console->Print(tally.counts[Done::kFine] == 0 ? "]\n" : "\n]\n");
  return ExitStatusOf(tally, console);
}

// The contents of all tags of one name, one a line.
int ShowTag(const Options& options, Console* console) {
  const auto targets = FindTargets(options.paths, options.recursive);
  const bool many = options.recursive || targets.size() > 1;
  const std::string name = ToUtf8(options.name);
  const auto list = [&](const Target& target) -> Done {
    Done done = {Done::kFine, ""};
    const Picture picture = ReadPicture(target.path);
    for (const Tag& tag : picture.document().tags) {
      if (ToUtf8(tag.name) != name) continue;
      if (many) done.output += Printable(target.path) + (console->IsTerminal() ? ": " : "\t");
      done.output += (console->IsTerminal() ? Printable(tag.content) : ToUtf8(tag.content)) + "\n";
    }
    return done;
  };
  return ExitStatusOf(RunAll(targets, list, console), console);
}

int Check(const Options& options, Console* console) {
  const auto targets = FindTargets(options.paths, options.recursive);
  const auto check = [](const Target& target) -> Done {
    Done done = {Done::kFine, ""};
    const Picture picture = ReadPicture(target.path);
    for (const Finding& finding : picture.reading.findings) {
      constexpr const char* kKinds[] = {"note", "not read", "not kept"};
      done.output += Printable(target.path + ": " + kKinds[finding.kind] + ": " + finding.text);
      if (finding.kind != Finding::kNote) {
        done.output += " (" + std::to_string(finding.code) + ")";
        done.kind = Done::kLosing;
      }
      done.output += "\n";
    }
    return done;
  };
  const Tally tally = RunAll(targets, check, console);
  PrintTally(
      tally,
      {{Done::kFine, "fine"}, {Done::kLosing, "losing something"}, {Done::kFailed, "failed"}},
      console);
  return ExitStatusOf(tally, console);
}

// ---- rewriting ----------------------------------------------------------------------------------

using Rewriter = std::function<std::optional<Picture>(const Target&, const Picture&)>;

int RewriteAll(const std::vector<Target>& targets, const Options& options, const Rewriter& rewrite,
               Console* console) {
  const bool dryRun = options.rewrite.dryRun;
  signal(SIGPIPE, SIG_IGN);  // pictures are not left half done because nobody reads the summary
  const auto one = [&](const Target& target) -> Done {
    const Picture picture = ReadPicture(target.path);
    const std::optional<Picture> built = rewrite(target, picture);
    if (!built) return {Done::kUnchanged, ""};
    return {Done::kWritten, dryRun ? console->DescribeChange(target.path, picture, *built) : ""};
  };
  const Tally tally = RunAll(targets, one, console);
  PrintTally(tally,
             {{Done::kWritten, dryRun ? "would be written" : "written"},
              {Done::kUnchanged, "unchanged"},
              {Done::kFailed, "failed"}},
             console);
  return ExitStatusOf(tally, console);
}

int Clear(const Options& options, Console* console) {
  const auto clear = [&options](const Target& target, const Picture& picture) {
    return ClearPicture(target.path, picture, options.rewrite);
  };
  return RewriteAll(FindTargets(options.paths, options.recursive), options, clear, console);
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
  changes.category = options.category;
  changes.type = options.type;
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
  if (input == nullptr || ferror(input))
    throw UsageError(options.Source() + ": " + strerror(errno));
  return text;
}

std::vector<JsonEntry> ReadEntries(const Options& options) {
  try {
    return ParseJson(ReadAll(options));
  } catch (const Failure& failure) {
    throw UsageError(options.Source() + ": " + failure.what());
  }
}

// One object for all paths, or each object for its own.
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
  const std::vector<Target> targets = FindTargets(paths, false);
  for (size_t i = 0; i < entries.size(); ++i) {
    if (i < targets.size() && targets[i].origin == i) continue;
    throw UsageError(options.Source() + ": " + entries[i].place +
                     "/path: expected each picture once, found it again");
  }
  return targets;
}

// What the command line names is changed on top of what the file says.
void AddOptions(const Changes& named, Changes* changes) {
  changes->labels = named.labels;
  changes->tags = named.tags;
  if (named.category) changes->category = named.category;
  if (named.type) changes->type = named.type;
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
    return SetPicture(target.path, picture, entry.changes, options.rewrite);
  };
  return RewriteAll(targets, options, set, console);
}

// ---- extracting ---------------------------------------------------------------------------------

const Blob& FindBlob(const Picture& picture, const Options& options) {
  for (const Blob& blob : picture.blobs) {
    if (ToUtf8(blob.label).starts_with(ToUtf8(options.label)) &&
        ToUtf8(blob.name) == ToUtf8(options.name)) {
      return blob;
    }
  }
  throw Failure(kBadBlob, "no blob " + Quoted(options.name) + " labelled " + Quoted(options.label));
}

int Extract(const Options& options, Console* console) {
  const bool toStandardOutput = options.output.empty() || options.output == "-";
  if (toStandardOutput && console->IsTerminal()) {
    throw UsageError("extract: a blob is not written to a terminal; name a file with -o");
  }
  try {
    const Picture picture = ReadPicture(options.picture);
    const std::string& bytes = FindBlob(picture, options).bytes;
    if (toStandardOutput) {
      console->Print(bytes);
    } else {
      const auto* const data = reinterpret_cast<const uint8_t*>(bytes.data());
      WriteFile(options.output, {data, bytes.size()}, 0666, Existing::kOverwrite);
    }
    return kAllWell;
  } catch (const Failure& failure) {
    console->Fail(options.picture, failure);
    return kSomeFailed;
  }
}

// ---- the command line ---------------------------------------------------------------------------

// CLI11 takes "[a,b]" for a list and "--category=" for an option whose value is the next word. A
// guard in front of the one, and two words for the other, make them what they are. It takes its
// words back to front.
constexpr char kGuard = '\x01';

std::vector<std::string> GuardArguments(int argc, char** argv) {
  std::vector<std::string> arguments;
  bool onlyPaths = false;  // behind "--"
  for (int i = 1; i < argc; ++i) {
    std::string word = argv[i];
    onlyPaths = onlyPaths || word == "--";
    if (!onlyPaths && word.starts_with("--") && word.find('=') == word.size() - 1 &&
        !word.starts_with("--backup")) {
      arguments.push_back(word.substr(0, word.size() - 1));
      word.clear();
    }
    arguments.push_back(word.starts_with('[') ? kGuard + word : word);
  }
  std::reverse(arguments.begin(), arguments.end());
  return arguments;
}

std::string Unguarded(const std::string& word) {
  return word.starts_with(kGuard) ? word.substr(1) : word;
}

CLI::Option* AddTexts(CLI::App* app, const char* name, std::vector<std::string>* texts,
                      const char* help) {
  const auto take = [texts](const CLI::results_t& words) {
    std::transform(words.begin(), words.end(), std::back_inserter(*texts), Unguarded);
    return true;
  };
  return app->add_option(name, take, help)->take_all();
}

template <typename Text>
CLI::Option* AddText(CLI::App* app, const char* name, Text* text, const char* help) {
  const auto take = [text](const CLI::results_t& words) {
    *text = Unguarded(words.back());
    return true;
  };
  return app->add_option(name, take, help);
}

class CommandLine {
 public:
  CommandLine() : app_(kAbout, "lumigram") {
    app_.require_subcommand(1);
    app_.set_version_flag("--version", "lumigram " LUMIGRAM_VERSION);
    AddShow();
    AddSet();
    AddTag();
    AddExtract();
    AddCheck();
    AddClear();
  }

  int Run(int argc, char** argv) {
    try {
      app_.parse(GuardArguments(argc, argv));
    } catch (const CLI::ParseError& error) {
      return app_.exit(error) == 0 ? kAllWell : kUsage;
    }
    Console console;
    try {
      const int status = command_(options_, &console);
      if (fflush(stdout) == 0 && !ferror(stdout)) return status;
      console.Complain("lumigram: standard output cannot be written");
      return kSomeFailed;
    } catch (const UsageError& error) {
      console.Complain(std::string("lumigram: ") + error.what());
      return kUsage;
    }
  }

 private:
  using Command = int (*)(const Options&, Console*);

  CLI::App* AddCommand(const char* name, const char* help, Command command) {
    CLI::App* const app = app_.add_subcommand(name, help);
    app->callback([this, command] { command_ = command; });
    return app;
  }

  CLI::Option* AddPaths(CLI::App* app) {
    app->add_flag("-r,--recursive", options_.recursive, "Take the pictures in folders too");
    return AddTexts(app, "PATHS", &options_.paths, "Pictures, or folders with -r")->expected(-1);
  }

  void AddRewriting(CLI::App* app) {
    RewriteOptions& rewrite = options_.rewrite;
    app->add_flag("-n,--dry-run", rewrite.dryRun, "Say what would change, and change nothing");
    app->add_flag("--force", rewrite.force, "Rewrite pictures though something in them is lost");
    app->add_flag("--backup{~}", rewrite.backupSuffix,
                  "Keep the old picture beside the new one, with ~ or another suffix")
        ->check([](const std::string& suffix) {
          return suffix.find('/') == suffix.npos ? "" : "a suffix has no slash";
        });
  }

  void AddShow() {
    CLI::App* const app = AddCommand("show", "Show what pictures carry", Show);
    app->add_flag("--json", options_.json, "As JSON, which set --from takes");
    AddPaths(app)->required();
  }

  void AddSet() {
    CLI::App* const app = AddCommand("set", "Change what is named, and keep the rest", Set);
    AddTexts(app, "--label", &options_.labels,
             "Change the label of that name, or add it; \\: is a colon, an empty text none")
        ->type_name("NAME[:NOTE[:PART]]");
    AddText(app, "--category", &options_.category, "The category; empty for none")
        ->type_name("TEXT");
    AddText(app, "--type", &options_.type, "The type; empty for none")->type_name("TEXT");
    AddTexts(app, "--tag", &options_.tags,
             "Take the place of the tags of that name; empty for none")
        ->type_name("NAME=CONTENT");
    AddTexts(app, "--embed", &options_.embeds, "Embed the file, under a tag of that name")
        ->type_name("LABEL:TAG=FILE");
    AddText(app, "--from", &options_.from, "Take the changes from JSON; - for standard input")
        ->type_name("FILE");
    app->add_flag("--replace", options_.rewrite.replace, "Start from nothing");
    AddRewriting(app);
    AddPaths(app);
  }

  void AddTag() {
    CLI::App* const app = AddCommand("tag", "Show the contents of the tags of one name", ShowTag);
    AddText(app, "NAME", &options_.name, "The tag's name")->required();
    AddPaths(app)->required();
  }

  void AddExtract() {
    CLI::App* const app = AddCommand("extract", "Write out one blob of a picture", Extract);
    AddText(app, "LABEL", &options_.label, "The blob's label, or its beginning")->required();
    AddText(app, "NAME", &options_.name, "The blob's name")->required();
    AddText(app, "PICTURE", &options_.picture, "The picture")->required();
    AddText(app, "-o,--output", &options_.output, "The file to write; standard output without it")
        ->type_name("FILE");
  }

  void AddCheck() {
    AddPaths(AddCommand("check", "Say what reading would lose or refuse", Check))->required();
  }

  void AddClear() {
    CLI::App* const app = AddCommand("clear", "Remove documents and blobs", Clear);
    AddRewriting(app);
    AddPaths(app)->required();
  }

  CLI::App app_;
  Options options_;
  Command command_ = nullptr;
};

}  // namespace
}  // namespace lumigram::tool

int main(int argc, char** argv) {
  signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is a failure like any other
  return lumigram::tool::CommandLine().Run(argc, argv);
}
