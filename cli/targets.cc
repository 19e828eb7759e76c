#include "cli/targets.h"

#include <errno.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>

#include "core/base/status.h"
#include "core/write/temporary_file.h"

namespace lumigram::cli {
namespace {

class TargetFinder {
 public:
  explicit TargetFinder(bool recursive) : recursive_(recursive) {}

  void Add(const std::string& path, size_t origin) {
    origin_ = origin;
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return Refuse(path, strerror(errno));
    if (!S_ISDIR(status.st_mode)) return AddFile(path, status);
    if (!recursive_) return Refuse(path, "a folder; use -r for the pictures in it");
    AddFolder(path);
  }

  std::vector<Target> Take() { return std::move(targets_); }

 private:
  void Refuse(const std::string& path, const std::string& reason) {
    targets_.push_back({path, origin_, Failure(kCannotOpen, reason)});
  }

  void AddFile(const std::string& path, const struct stat& status) {
    if (!seen_.insert({status.st_dev, status.st_ino}).second) return;
    const bool isTemporary = path.substr(path.rfind('/') + 1).starts_with(kTemporaryPrefix);
    if (isTemporary) return Refuse(path, "a temporary file of a picture that is being replaced");
    targets_.push_back({path, origin_, std::nullopt});
  }

  // Links to folders are not followed, so that the walk ends.
  void AddFolder(const std::string& folder) {
    std::error_code error;
    std::vector<std::filesystem::directory_entry> entries;
    for (auto entry = std::filesystem::directory_iterator(folder, error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
      entries.push_back(*entry);
    }
    if (error) Refuse(folder, error.message());
    std::sort(entries.begin(), entries.end());
    for (const auto& entry : entries) {
      const std::string path = entry.path();
      struct stat status;
      FileType type;
      if (entry.is_directory(error) && !entry.is_symlink(error)) {
        AddFolder(path);
      } else if (GetFileType(path.c_str(), &type) == kOk &&
                 !entry.path().filename().string().starts_with(kTemporaryPrefix) &&
                 stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        AddFile(path, status);
      }
    }
  }

  const bool recursive_;
  size_t origin_ = 0;
  std::vector<Target> targets_;
  std::set<std::pair<dev_t, ino_t>> seen_;
};

}  // namespace

std::vector<Target> FindTargets(const std::vector<std::string>& paths, bool recursive) {
  TargetFinder finder(recursive);
  for (size_t i = 0; i < paths.size(); ++i) finder.Add(paths[i], i);
  return finder.Take();
}

}  // namespace lumigram::cli
