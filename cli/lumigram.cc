// The command line of lumigram.
#include <signal.h>
#include <stdio.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/console.h"

namespace lumigram::cli {
namespace {

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
    app->add_flag("-r,--recursive", options_.recursive, "Include the pictures in folders");
    return AddTexts(app, "PATHS", &options_.paths, "Pictures, or folders with -r")->expected(-1);
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
    app->add_flag("--json", options_.json, "Print JSON, which set --from reads");
    AddPaths(app)->required();
  }

  void AddSet() {
    CLI::App* const app = AddCommand("set", "Change the given metadata, and keep the rest", Set);
    AddTexts(
        app, "--label", &options_.labels,
        "Change or add the label of that name; \\: is a colon, an empty NOTE or PART is removed")
        ->type_name("NAME[:NOTE[:PART]]");
    AddText(app, "--category", &options_.category, "Set the category; an empty text removes it")
        ->type_name("TEXT");
    AddText(app, "--type", &options_.type, "Set the type; an empty text removes it")
        ->type_name("TEXT");
    AddTexts(app, "--tag", &options_.tags,
             "Replace all tags of that name; an empty content removes them")
        ->type_name("NAME=CONTENT");
    AddTexts(app, "--embed", &options_.embeds, "Embed the file, with a tag that refers to it")
        ->type_name("LABEL:TAG=FILE");
    AddText(app, "--from", &options_.from, "Read the changes from JSON; - for standard input")
        ->type_name("FILE");
    app->add_flag("--replace", options_.rewrite.replace, "Start from an empty document");
    AddRewriting(app);
    AddPaths(app);
  }

  void AddTag() {
    CLI::App* const app = AddCommand("tag", "Show the contents of the tags of one name", ShowTag);
    AddText(app, "NAME", &options_.name, "The tag's name")->required();
    AddPaths(app)->required();
  }

  void AddExtract() {
    CLI::App* const app =
        AddCommand("extract", "Write one blob to a file or standard output", Extract);
    AddText(app, "LABEL", &options_.label, "The blob's label, or its beginning")->required();
    AddText(app, "NAME", &options_.name, "The blob's name")->required();
    AddText(app, "PICTURE", &options_.picture, "The picture")->required();
    AddText(app, "-o,--output", &options_.output, "The file to write; default: standard output")
        ->type_name("FILE");
  }

  void AddCheck() {
    AddPaths(AddCommand("check", "Report what reading would lose or refuse", Check))->required();
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
}  // namespace lumigram::cli

int main(int argc, char** argv) {
  signal(SIGXFSZ, SIG_IGN);  // A file over the size limit of the process fails as any other.
  return lumigram::cli::CommandLine().Run(argc, argv);
}
