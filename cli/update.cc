#include "cli/update.h"

#include "cli/backup.h"
#include "core/base/status.h"

namespace lumigram::cli {
namespace {

// False when the picture is no longer the one that was opened.
bool Store(const std::string& path, const std::string& backupSuffix, const Picture& built,
           OpenedPicture* file) {
  std::optional<Backup> backup;
  if (!backupSuffix.empty()) backup.emplace(path + backupSuffix, *file);
  switch (file->Replace(built.bytes)) {
    case OpenedPicture::Replacement::kReplaced:
      if (backup) backup->Keep();
      return true;
    case OpenedPicture::Replacement::kChanged:
      return false;
    case OpenedPicture::Replacement::kGone:
      throw Failure(kCannotWrite, "was deleted while it was being changed");
    case OpenedPicture::Replacement::kCannotWrite:
      throw Explained(path, FailureOfSystem(kCannotWrite, "cannot be written"), Access::kWrite);
  }
  return false;
}

}  // namespace

bool UpdatePicture(const std::string& path, const std::string& backupSuffix,
                   const std::function<std::optional<Picture>(const Picture&)>& rewrite) {
  constexpr int kTries = 5;
  for (int i = 0; i < kTries; ++i) {
    OpenedPicture file;
    const Picture picture = ReadPicture(path, OpenedPicture::Purpose::kToReplace, &file);
    const std::optional<Picture> built = rewrite(picture);
    if (!built) return false;
    if (Store(path, backupSuffix, *built, &file)) return true;
  }
  throw Failure(kCannotWrite, "other programs kept changing it while it was being changed");
}

}  // namespace lumigram::cli
