#include "cli/extract_all.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

#include "cli/batch.h"
#include "cli/commands.h"
#include "cli/files.h"
#include "cli/spelling.h"
#include "core/base/status.h"

namespace lumigram::cli {
namespace {

// An open folder and its path, for messages.
struct OpenFolder {
  std::string path;
  std::unique_ptr<Descriptor> descriptor;

  // A path to an entry that follows no link but the kernel's own to the open folder.
  std::string PathOf(const std::string& name) const {
    return "/proc/self/fd/" + std::to_string(descriptor->Get()) + "/" + name;
  }
};

Failure FailureAt(const std::string& path) {
  return FailureOfSystem(kCannotWrite, Printable(path));
}

// Creates the folder if it does not exist.
OpenFolder EnterFolder(const OpenFolder& parent, const std::string& name) {
  const int in = parent.descriptor->Get();
  const std::string path = parent.path + "/" + name;
  if (mkdirat(in, name.c_str(), 0777) != 0 && errno != EEXIST) throw FailureAt(path);
  constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  auto folder = std::make_unique<Descriptor>(openat(in, name.c_str(), kFlags));
  if (folder->Get() < 0) throw FailureAt(path);
  return {path, std::move(folder)};
}

OpenFolder EnterFolderOf(const std::string& picture, const std::string& root) {
  OpenFolder folder = {root,
                       std::make_unique<Descriptor>(Open(root.c_str(), O_RDONLY | O_DIRECTORY))};
  if (folder.descriptor->Get() < 0) throw FailureAt(root);
  std::string_view rest = picture;
  while (!rest.empty()) {
    const std::string name(rest.substr(0, rest.find('/')));
    rest.remove_prefix(std::min(rest.size(), name.size() + 1));
    if (name.empty() || name == ".") continue;
    folder = EnterFolder(folder, name == ".." ? "__" : name);
  }
  return folder;
}

// Cuts the text where a character begins.
std::string_view Cut(std::string_view text, size_t limit) {
  if (text.size() <= limit) return text;
  while (limit > 0 && (text[limit] & 0xC0) == 0x80) --limit;
  return text.substr(0, limit);
}

// Returns a file name that is not taken yet, and takes it.
std::string TakeName(const std::string& blob, std::set<std::string>* taken) {
  const std::string wanted = FileName(blob);
  for (int number = 1;; ++number) {
    const std::string suffix = number == 1 ? "" : "~" + std::to_string(number);
    std::string name = std::string(Cut(wanted, NAME_MAX - suffix.size())) + suffix;
    if (taken->insert(name).second) return name;
  }
}

void WriteBlob(const OpenFolder& folder, const std::string& name, const std::string& blob,
               bool force) {
  const std::string path = folder.PathOf(name);
  const std::span bytes(reinterpret_cast<const uint8_t*>(blob.data()), blob.size());
  NewFile file;
  if (!file.CreateBeside(path.c_str(), "", 0666) || !WriteAt(file.Get(), bytes, 0) ||
      !file.SyncAndClose() ||
      !(force ? file.RenameTo(path.c_str()) : NameUnlessTaken(path, &file))) {
    const bool isTaken = !force && errno == EEXIST;
    const Failure failure = FailureAt(folder.path + "/" + name);
    if (!isTaken) throw Failure(failure);
    throw Failure(failure.code, std::string(failure.what()) + "; --force replaces it");
  }
}

// Writes as many blobs as possible, and then throws the first failure.
void WriteBlobs(const std::string& path, const std::vector<Blob>& blobs, const Options& options) {
  const OpenFolder folder = EnterFolderOf(path, options.folder);
  std::set<std::string> taken;
  std::optional<Failure> failed;
  for (const Blob& blob : blobs) {
    try {
      WriteBlob(folder, TakeName(blob.name, &taken), blob.bytes, options.rewrite.force);
    } catch (const Failure& failure) {
      if (!failed) failed = failure;
    }
  }
  if (failed) throw Failure(*failed);
}

}  // namespace

int ExtractAll(const Options& options, Console* console) {
  if (options.folder.empty()) throw UsageError("extract: --all needs -d FOLDER");
  if (!options.output.empty()) throw UsageError("extract: -o is for one blob");
  std::error_code error;
  std::filesystem::create_directories(options.folder, error);
  if (error) throw UsageError("extract: -d " + Quoted(options.folder) + ": " + error.message());
  const auto extract = [&](const Target& target) -> Outcome {
    const Picture picture = ReadPicture(target.path);
    if (picture.blobs.empty()) return {Outcome::kNotFound, ""};
    WriteBlobs(target.path, picture.blobs, options);
    return {Outcome::kFine, ""};
  };
  const auto targets = TargetsOf(options, Purpose::kRead);
  const Tally tally = RunAll(targets.get(), extract, console);
  console->Print(Describe(tally, {{Outcome::kFine, "extracted"},
                                  {Outcome::kNotFound, "without blobs"},
                                  {Outcome::kFailed, "failed"}}) +
                 "\n");
  return ExitStatusOf(tally, console);
}

}  // namespace lumigram::cli
