// The command line of lumigram.
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iterator>
#include <new>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/console.h"
#include "cli/copy.h"
#include "cli/spelling.h"

namespace lumigram::cli {
namespace {

// The exit status when a command cannot go on.
int statusOfFailure = kSomeFailed;

constexpr char kAbout[] =
    "Shows and changes the metadata of small emoji pictures (GIF, PNG, JPEG): labels, category,\n"
    "type, tags and blobs. Exit status: 0 success, 1 some pictures failed, 2 usage error.";

// CLI11 parses "[a,b]" as a list, and "--category=" as an option whose value is the next word. We
// put a guard character before "[", and pass "--category=" as two words, the second one empty.
// CLI11 expects the words in reverse order.
constexpr char kGuard = '\x01';

std::vector<std::string> GuardArguments(int argc, char** argv) {
  std::vector<std::string> arguments;
  bool onlyPaths = false;  // after "--"
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
    AddFind();
    AddExtract();
    AddCheck();
    AddCopy();
    AddClear();
    AddHelp();
  }

  int Run(int argc, char** argv) {
    try {
      app_.parse(GuardArguments(argc, argv));
    } catch (const CLI::Success& wish) {  // --help or --version
      return app_.exit(wish);
    } catch (const CLI::ParseError& error) {
      return Refuse(Describe(error));
    }
    if (app_.got_subcommand("help")) return PrintHelp();
    if (command_ == Find) statusOfFailure = kFindFailed;
    Console console;
    try {
      const int status = command_(options_, &console);
      if (fflush(stdout) == 0 && !ferror(stdout)) return status;
      console.Complain("lumigram: standard output cannot be written");
      return statusOfFailure;
    } catch (const UsageError& error) {
      return Refuse(error.what());
    }
  }

 private:
  using Command = int (*)(const Options&, Console*);

  static ExitStatus Refuse(const std::string& message) {
    Console().Complain("lumigram: " + message);
    return kUsage;
  }

  // Names the word at fault: one that is not known, or else the one that CLI11 names.
  std::string Describe(const CLI::ParseError& error) const {
    const auto commands = app_.get_subcommands();
    const std::vector<std::string> unknown = app_.remaining(true);
    if (commands.empty() && unknown.empty()) return "a command is missing; see lumigram --help";
    if (commands.empty()) return Quoted(unknown[0]) + " is not a command; see lumigram --help";
    const std::string command = commands[0]->get_name();
    if (unknown.empty()) return command + ": " + error.what();
    const std::string word = Unguarded(unknown[0]);
    const bool isFile = word.starts_with('-') && access(word.c_str(), F_OK) == 0;
    return command + ": " + Quoted(word) +
           (isFile ? " is not an option; ./ in front makes it a path"
                   : " is not expected here; see lumigram help " + command);
  }

  int PrintHelp() const {
    if (topic_.empty()) return Print(CommandLine().app_.help());  // of no command
    for (const CLI::App* command : app_.get_subcommands(nullptr)) {
      if (command->get_name() == topic_) return Print(command->help("lumigram"));
    }
    return Refuse("help: " + Quoted(topic_) + " is not a command");
  }

  static ExitStatus Print(const std::string& text) {
    return fputs(text.c_str(), stdout) >= 0 && fflush(stdout) == 0 ? kAllWell : kSomeFailed;
  }

  CLI::App* AddCommand(const char* name, const char* help, Command command) {
    CLI::App* const app = app_.add_subcommand(name, help);
    app->callback([this, command] { command_ = command; });
    return app;
  }

  CLI::Option* AddPaths(CLI::App* app) {
    app->add_flag("-r,--recursive", options_.recursive, "Include the pictures in folders");
    return AddTexts(app, "PATHS", &options_.paths,
                    "Pictures, or folders with -r; a single - is standard input")
        ->expected(-1);
  }

  void AddRewriting(CLI::App* app) {
    RewriteOptions& rewrite = options_.rewrite;
    app->add_flag("-n,--dry-run", rewrite.dryRun, "Print what would change, and change nothing");
    app->add_flag("--force", rewrite.force, "Rewrite pictures even if something in them is lost");
    app->add_flag("--backup{~}", rewrite.backupSuffix,
                  "Keep the old picture beside the new one, with ~ or another suffix")
        ->check([](const std::string& suffix) {
          return suffix.find('/') == std::string::npos ? "" : "a suffix must not contain a slash";
        });
  }

  void AddShow() {
    CLI::App* const app = AddCommand("show", "Show the metadata of pictures", Show);
    auto* const json = app->add_flag("--json", options_.json, "Print JSON, which set --from reads");
    app->add_flag("--blobs", options_.blobs, "With the bytes of the blobs, for a backup")
        ->needs(json);
    AddPaths(app)->required();
  }

  void AddSet() {
    CLI::App* const app = AddCommand("set", "Change the given metadata, and keep the rest", Set);
    AddTexts(
        app, "--label", &options_.labels,
        "Change or add the label of that name; \\: is a colon, an empty NOTE or PART is removed")
        ->type_name("NAME[:NOTE[:PART]]");
    AddTexts(app, "--remove-label", &options_.removedLabels, "Remove the label of that name")
        ->type_name("NAME");
    AddTexts(app, "--rename-label", &options_.renamedLabels,
             "Rename a label, if there is one; \\= is an equals sign")
        ->type_name("OLD=NEW");
    AddText(app, "--category", &options_.category, "Set the category; an empty text removes it")
        ->type_name("TEXT");
    AddText(app, "--type", &options_.type, "Set the type; an empty text removes it")
        ->type_name("TEXT");
    AddTexts(app, "--tag", &options_.tags,
             "Replace all tags of that name; an empty content removes them")
        ->type_name("NAME=CONTENT");
    AddTexts(app, "--remove-tag", &options_.removedTags, "Remove all tags of that name")
        ->type_name("NAME");
    AddTexts(app, "--embed", &options_.embeds, "Embed the file, with a tag that refers to it")
        ->type_name("LABEL:TAG=FILE");
    AddText(app, "--from", &options_.from, "Read the changes from JSON; - for standard input")
        ->type_name("FILE");
    app->add_flag("--files-anywhere", options_.filesAnywhere,
                  "With --from, embed files from outside of the folder of the JSON");
    app->add_flag("--replace", options_.rewrite.replace, "Start from an empty document");
    AddRewriting(app);
    AddPaths(app);
  }

  void AddTag() {
    CLI::App* const app = AddCommand("tag", "Show the contents of the tags of one name", ShowTag);
    AddText(app, "NAME", &options_.name, "The tag's name")->required();
    AddPaths(app)->required();
  }

  void AddFind() {
    struct Condition {
      FindOptions::Field field;
      const char *option, *help, *type;
    };
    constexpr Condition kConditions[] = {
        {FindOptions::kText, "--text", "Any label, note, tag content, category or type", "TEXT"},
        {FindOptions::kLabel, "--label", "The name of a label", "TEXT"},
        {FindOptions::kNote, "--note", "The note of a label", "TEXT"},
        {FindOptions::kPart, "--part", "The part of speech of a label, or its number", "TEXT"},
        {FindOptions::kCategory, "--category", "The category", "TEXT"},
        {FindOptions::kType, "--type", "The type", "TEXT"},
        {FindOptions::kTag, "--tag", "The name of a tag, and its content", "NAME[=TEXT]"},
        {FindOptions::kBlob, "--blob", "The name of a blob", "TEXT"},
    };
    FindOptions& find = options_.find;
    CLI::App* const app =
        AddCommand("find", "Print the paths of the pictures that fulfil all conditions", Find);
    for (const auto& [field, option, help, type] : kConditions) {
      AddTexts(app, option, &find.texts[field], help)->type_name(type);
    }
    app->add_flag("--no-label", find.noLabel, "Pictures without labels");
    app->add_flag("--no-document", find.noDocument, "Pictures without a document");
    app->add_flag("--exact", find.exact, "TEXT is the whole text, not a part of it in any case");
    app->add_flag("--count", find.count, "Print the number of pictures instead of their paths");
    app->add_flag("-0,--null", find.nul, "End each path with a NUL, for xargs -0");
    AddPaths(app)->required();
  }

  void AddExtract() {
    CLI::App* const app = AddCommand(
        "extract", "Write one blob to a file or standard output, or all to a folder", Extract);
    AddText(app, "-o,--output", &options_.output, "The file to write; default: standard output")
        ->type_name("FILE");
    app->add_flag("--all", options_.allBlobs, "Write all blobs, each as FOLDER/PICTURE/NAME");
    AddText(app, "-d,--directory", &options_.folder, "The folder for --all")->type_name("FOLDER");
    app->add_flag("--force", options_.rewrite.force, "With --all, replace files that exist");
    app->add_flag("-r,--recursive", options_.recursive,
                  "With --all, include the pictures in folders");
    AddTexts(app, "WORDS", &options_.paths,
             "LABEL (or its beginning), NAME, PICTURE (- is standard input); with --all PICTURES")
        ->expected(-1)
        ->required();
  }

  void AddCheck() {
    AddPaths(AddCommand("check", "Report what reading would lose or refuse", Check))->required();
  }

  void AddCopy() {
    CLI::App* const app = AddCommand(
        "copy", "Replace the document and the blobs of a picture by those of another", Copy);
    AddText(app, "OLD", &options_.copyFrom, "The picture that has them; a folder with -r")
        ->required();
    AddText(app, "NEW", &options_.copyTo, "The picture that gets them; a folder with -r")
        ->required();
    app->add_flag("-r,--recursive", options_.recursive,
                  "Copy between pictures of the same path but for the extension");
    app->add_flag("--without-blobs", options_.rewrite.withoutBlobs,
                  "Copy no blobs, and no tags that refer to them");
    AddRewriting(app);
  }

  void AddClear() {
    CLI::App* const app = AddCommand("clear", "Remove documents and blobs", Clear);
    AddRewriting(app);
    AddPaths(app)->required();
  }

  void AddHelp() {
    AddText(AddCommand("help", "Explain a command", nullptr), "COMMAND", &topic_, "The command");
  }

  CLI::App app_;
  Options options_;
  std::string topic_;  // of the command "help"
  Command command_ = nullptr;
};

// A standard stream that is closed must not become the descriptor of a picture.
void OpenStandardStreams() {
  while (true) {
    const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (descriptor > STDERR_FILENO) (void)close(descriptor);
    if (descriptor < 0 || descriptor > STDERR_FILENO) return;
  }
}

// An exception that cannot be thrown for want of memory, or that leaves a function of a library
// which must not throw, ends the process here.
[[noreturn]] void EndWithoutMemory() {
  constexpr char kLine[] = "lumigram: no memory\n";
  (void)!write(STDERR_FILENO, kLine, sizeof kLine - 1);
  _exit(statusOfFailure);
}

// Runs before the constructors of global objects, which need memory, too.
[[gnu::constructor(101)]] void PrepareForNoMemory() { std::set_terminate(EndWithoutMemory); }

int Main(int argc, char** argv) {
  try {
    return CommandLine().Run(argc, argv);
  } catch (const std::bad_alloc&) {
    EndWithoutMemory();
  } catch (const std::exception& error) {
    fprintf(stderr, "lumigram: %s\n", error.what());
  }
  return statusOfFailure;
}

}  // namespace
}  // namespace lumigram::cli

int main(int argc, char** argv) {
  signal(SIGXFSZ, SIG_IGN);  // A file over the size limit of the process fails as any other.
  lumigram::cli::OpenStandardStreams();
  return lumigram::cli::Main(argc, argv);
}
