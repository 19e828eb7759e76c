#include "cli/targets.h"

#include <dirent.h>
#include <errno.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "cli/picture_model.h"
#include "core/base/status.h"
#include "core/write/temporary_file.h"

namespace lumigram::cli {
namespace {

using Identity = std::pair<dev_t, ino_t>;

Identity IdentityOf(const struct stat& status) { return {status.st_dev, status.st_ino}; }

Target Refused(const std::string& path, const std::string& reason) {
  return {path, Failure(kCannotOpen, reason)};
}

bool IsTemporary(std::string_view path) {
  return path.substr(path.rfind('/') + 1).starts_with(kTemporaryPrefix);
}

bool IsPictureName(const char* name) {
  FileType type;
  return GetFileType(name, &type) == kOk && !IsTemporary(name);
}

Target TargetFor(const std::string& path, bool exists, const struct stat& status) {
  if (!exists) return {path, Explained(path, Failure(kCannotOpen, strerror(errno)))};
  if (S_ISDIR(status.st_mode)) return Refused(path, "a folder; use -r for the pictures in it");
  if (IsTemporary(path)) {
    return Refused(path, "a temporary file of a picture that is being replaced");
  }
  return {path};
}

// ---- one folder ---------------------------------------------------------------------------------

// The names of a folder's pictures and folders, in order, each taken once.
class Folder {
 public:
  explicit Folder(std::string path) : path_(std::move(path)) {
    if (!path_.ends_with('/')) path_ += '/';
    DIR* const stream = opendir(path_.c_str());
    if (stream == nullptr) {
      error_ = errno;
      return;
    }
    Read(stream);
    closedir(stream);
    std::sort(starts_.begin(), starts_.end(),
              [this](size_t a, size_t b) { return strcmp(NameAt(a), NameAt(b)) < 0; });
  }

  int Error() const { return error_; }  // an errno: why not all of it could be read

  // Stores the next path and the type that its folder has for it, DT_DIR, DT_REG or DT_LNK. False
  // at the end.
  bool Take(std::string* path, unsigned char* type) {
    if (next_ == starts_.size()) return false;
    const size_t start = starts_[next_++];
    *path = path_ + NameAt(start);
    *type = static_cast<unsigned char>(names_[start]);
    return true;
  }

 private:
  const char* NameAt(size_t start) const { return &names_[start + 1]; }

  void Read(DIR* stream) {
    for (errno = 0; const dirent* const entry = readdir(stream); errno = 0) {
      const std::string_view name = entry->d_name;
      if (name == "." || name == "..") continue;
      const unsigned char type = entry->d_type == DT_UNKNOWN ? TypeOf(name) : entry->d_type;
      const bool isPicture = (type == DT_REG || type == DT_LNK) && IsPictureName(entry->d_name);
      if (type != DT_DIR && !isPicture) continue;
      starts_.push_back(names_.size());
      names_ += static_cast<char>(type);
      names_.append(name).push_back('\0');
    }
    error_ = errno;
  }

  // For file systems whose folders have no types.
  unsigned char TypeOf(std::string_view name) const {
    struct stat status;
    if (lstat((path_ + std::string(name)).c_str(), &status) != 0) return DT_UNKNOWN;
    return static_cast<unsigned char>(IFTODT(status.st_mode));
  }

  std::string path_;
  int error_ = 0;
  std::string names_;           // each with its type in front and a NUL behind
  std::vector<size_t> starts_;  // in names_, in the order of the names
  size_t next_ = 0;
};

// ---- telling pictures apart ---------------------------------------------------------------------

// Finds paths to pictures that are targets already. A file with one link in a walked folder is
// found once, unless one of its folders or the file itself is an argument, too, or a link leads to
// it. So only these and files with several links are remembered.
class Repetitions {
 public:
  explicit Repetitions(const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
      struct stat status;
      if (stat(argument.c_str(), &status) != 0) continue;
      arguments_.insert(IdentityOf(status));
      if (S_ISDIR(status.st_mode)) AddRoot(RealPath(argument));
    }
  }

  bool IsRepeated(const struct stat& status) {
    const Identity identity = IdentityOf(status);
    const bool hasLinks = !S_ISDIR(status.st_mode) && status.st_nlink > 1;
    if (!hasLinks && !arguments_.contains(identity)) return seen_.contains(identity);
    return !seen_.insert(identity).second;
  }

  // The same for a symbolic link in a walked folder.
  bool IsRepeatedLink(const std::string& link, const struct stat& status) {
    const std::string real = RealPath(link);
    const auto isWalked = [&real](const std::string& root) { return real.starts_with(root); };
    if (IsPictureName(real.c_str()) && std::any_of(roots_.begin(), roots_.end(), isWalked)) {
      return true;
    }
    return !seen_.insert(IdentityOf(status)).second;
  }

 private:
  void AddRoot(const std::string& real) {
    if (!real.empty()) roots_.push_back(real.ends_with('/') ? real : real + "/");
  }

  // Empty when there is none.
  static std::string RealPath(const std::string& path) {
    char real[PATH_MAX];
    return realpath(path.c_str(), real) == nullptr ? "" : real;
  }

  std::set<Identity> arguments_, seen_;
  std::vector<std::string> roots_;  // real paths of the folders, with a slash at the end
};

// ---- standard input -----------------------------------------------------------------------------

class StandardInput : public Targets {
 public:
  std::optional<Target> Next() override {
    if (std::exchange(isTaken_, true)) return std::nullopt;
    return Target{kStandardInput};
  }
  size_t Count(const std::stop_token&) override { return 1; }

 private:
  bool isTaken_ = false;
};

// ---- all paths ----------------------------------------------------------------------------------

class PathTargets : public Targets {
 public:
  PathTargets(std::vector<std::string> paths, bool recursive, Purpose purpose)
      : paths_(std::move(paths)), recursive_(recursive), purpose_(purpose) {
    if (purpose == Purpose::kWrite) repetitions_.emplace(paths_);
  }

  std::optional<Target> Next() override {
    while (!folders_.empty() || argument_ < paths_.size()) {
      std::optional<Target> target = folders_.empty() ? TakeArgument() : TakeFromFolder();
      if (target) return target;
    }
    return std::nullopt;
  }

  size_t Count(const std::stop_token& stop) override {
    PathTargets all(paths_, recursive_, purpose_);
    size_t count = 0;
    while (!stop.stop_requested() && all.Next()) ++count;
    return count;
  }

 private:
  std::optional<Target> TakeArgument() {
    const std::string& path = paths_[argument_++];
    struct stat status = {};
    const bool exists = stat(path.c_str(), &status) == 0;
    if (exists && recursive_ && S_ISDIR(status.st_mode)) return Enter(path);
    Target target = TargetFor(path, exists, status);
    if (exists && !target.failure && repetitions_ && repetitions_->IsRepeated(status)) return {};
    return target;
  }

  std::optional<Target> TakeFromFolder() {
    std::string path;
    unsigned char type = DT_UNKNOWN;
    if (!folders_.back().Take(&path, &type)) {
      folders_.pop_back();
      return std::nullopt;
    }
    if (type == DT_DIR) return Enter(path);
    if (type == DT_REG && !repetitions_) return Target{path};
    struct stat status;
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    if (repetitions_ && (type == DT_LNK ? repetitions_->IsRepeatedLink(path, status)
                                        : repetitions_->IsRepeated(status))) {
      return std::nullopt;
    }
    return Target{path};
  }

  // Begins with a folder. Returns a target that has failed if not all of it can be read.
  std::optional<Target> Enter(const std::string& path) {
    struct stat status;
    if (repetitions_ && stat(path.c_str(), &status) == 0 && repetitions_->IsRepeated(status)) {
      return std::nullopt;
    }
    const int error = folders_.emplace_back(path).Error();
    return error == 0 ? std::nullopt : std::optional(Refused(path, strerror(error)));
  }

  const std::vector<std::string> paths_;
  const bool recursive_;
  const Purpose purpose_;
  size_t argument_ = 0;
  std::vector<Folder> folders_;  // the one that is walked is the last, in those before it
  std::optional<Repetitions> repetitions_;
};

}  // namespace

std::unique_ptr<Targets> FindTargets(std::vector<std::string> paths, bool recursive,
                                     Purpose purpose) {
  if (paths.size() == 1 && paths[0] == kStandardInput && !recursive) {
    return std::make_unique<StandardInput>();
  }
  return std::make_unique<PathTargets>(std::move(paths), recursive, purpose);
}

Target FileTarget(const std::string& path) {
  struct stat status = {};
  const bool exists = stat(path.c_str(), &status) == 0;
  return TargetFor(path, exists, status);
}

}  // namespace lumigram::cli
