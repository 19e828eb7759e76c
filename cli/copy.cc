#include "cli/copy.h"

#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/commands.h"
#include "cli/spelling.h"
#include "cli/targets.h"
#include "core/base/status.h"

namespace lumigram::cli {
namespace {

namespace fs = std::filesystem;

bool IsFolder(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// The device and inode of a file; zeros if it is gone.
using Identity = std::pair<dev_t, ino_t>;

Identity IdentityOf(const std::string& path) {
  struct stat status = {};
  (void)stat(path.c_str(), &status);
  return {status.st_dev, status.st_ino};
}

// Whether a path below a folder is a link to a file that is not below it. The walk itself follows no
// links to folders.
bool LeavesFolder(const std::string& path, const std::string& folder) {
  std::error_code error;
  if (!fs::is_symlink(path, error)) return false;
  const std::string real = fs::canonical(path, error);
  const std::string realFolder = fs::canonical(folder, error) / "";
  return error || !real.starts_with(realFolder);
}

// The pictures that get metadata, each with the picture that has them.
class CopyTargets : public Targets {
 public:
  void Add(Target target, const std::string& source = "") {
    if (!target.failure) sources_[target.path] = source;
    targets_.push_back(std::move(target));
  }
  void Fail(const std::string& path, const char* reason) {
    Add({path, Failure(kBadArgument, reason)});
  }

  const std::string& SourceOf(const Target& target) const { return sources_.at(target.path); }

  std::optional<Target> Next() override {
    return next_ == targets_.size() ? std::nullopt : std::optional(targets_[next_++]);
  }
  size_t Count(const std::stop_token&) override { return targets_.size(); }

 private:
  std::vector<Target> targets_;
  std::map<std::string, std::string> sources_;
  size_t next_ = 0;
};

// The pictures of two folders, paired by their paths below the folder, without the extensions.
class Pairing {
 public:
  Pairing(const std::string& oldFolder, const std::string& newFolder, CopyTargets* targets)
      : targets_(*targets) {
    Collect(oldFolder, &Group::olds);
    Collect(newFolder, &Group::news);
    for (const auto& [path, group] : groups_) {
      if (group.IsPair()) sources_[IdentityOf(group.news[0])].insert(IdentityOf(group.olds[0]));
    }
    for (const auto& [path, group] : groups_) group.IsPair() ? AddPair(group) : FailAll(group);
  }

 private:
  using Paths = std::vector<std::string>;
  struct Group {
    Paths olds, news;
    bool IsPair() const { return olds.size() == 1 && news.size() == 1; }
  };

  void Collect(const std::string& folder, Paths Group::*side) {
    const auto pictures = FindTargets({folder}, true, Purpose::kRead);
    while (std::optional<Target> picture = pictures->Next()) {
      const std::string& path = picture->path;
      if (picture->failure) {
        targets_.Add(*picture);
      } else if (LeavesFolder(path, folder)) {
        targets_.Fail(path, "a link that leaves the folder");
      } else {
        const size_t start = folder.size() + (folder.ends_with('/') ? 0 : 1);
        const std::string key = path.substr(start, path.rfind('.') - start);
        (groups_[key].*side).push_back(path);
      }
    }
  }

  // Several names of one picture have one source, or none gets anything.
  void AddPair(const Group& group) {
    const Identity picture = IdentityOf(group.news[0]);
    if (sources_[picture].size() > 1) {
      targets_.Fail(group.news[0], "ambiguous: its names have several pictures to copy from");
    } else if (added_.insert(picture).second) {
      targets_.Add({group.news[0]}, group.olds[0]);
    }
  }

  void FailAll(const Group& group) {
    const char* const reason = group.news.empty()   ? "unpaired: no picture to copy to"
                               : group.olds.empty() ? "unpaired: no picture to copy from"
                                                    : "ambiguous: several pictures have this path";
    for (const std::string& path : group.olds) targets_.Fail(path, reason);
    for (const std::string& path : group.news) targets_.Fail(path, reason);
  }

  CopyTargets& targets_;
  std::map<std::string, Group> groups_;
  std::map<Identity, std::set<Identity>> sources_;
  std::set<Identity> added_;
};

Picture ReadSource(const std::string& path) {
  try {
    return ReadPicture(path);
  } catch (const Failure& failure) {
    throw Failure(failure.code, Printable(path) + ": " + failure.what());
  }
}

}  // namespace

int Copy(const Options& options, Console* console) {
  CopyTargets targets;
  if (options.recursive) {
    for (const std::string& path : {options.copyFrom, options.copyTo}) {
      if (!IsFolder(path)) throw UsageError("copy: " + Quoted(path) + " is not a folder");
    }
    Pairing(options.copyFrom, options.copyTo, &targets);
  } else {
    targets.Add(FileTarget(options.copyTo), options.copyFrom);
  }
  const auto copy = [&](const Target& target, const Picture& picture, std::vector<std::string>*) {
    return CopyMetadata(ReadSource(targets.SourceOf(target)), picture, options.rewrite);
  };
  return RewriteAll(&targets, options, copy, console);
}

}  // namespace lumigram::cli
