// The command line: metadata of small emoji pictures, at a shell.
#include <signal.h>
#include <stdio.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "tools/commands.h"
#include "tools/console.h"

namespace lumigram::tool {
namespace {

constexpr char kAbout[] =
    "Shows and changes the metadata of small emoji pictures (GIF, PNG, JPEG): labels, category,\n"
    "type, tags and blobs. Exit status: 0 all well, 1 some failed, 2 usage.";

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
