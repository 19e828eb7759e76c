#include "cli/backup.h"

#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/files.h"
#include "cli/spelling.h"
#include "core/base/status.h"

namespace lumigram::cli {
namespace {

Failure FailureOf(const std::string& path, const std::string& words = "") {
  return FailureOfSystem(kCannotWrite, "the backup " + Quoted(path) + words);
}

// Syncs the file that is there, too: the run that wrote it may have been killed before it did.
bool IsBackup(const std::string& path, const OpenedPicture& picture) {
  const Descriptor file(Open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK));
  struct stat status;
  return fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode) &&
         static_cast<size_t>(status.st_size) == picture.Bytes().size() &&
         BeginsWith(file.Get(), picture.Bytes()) && Sync(file.Get());
}

void WriteCopy(const std::string& path, const OpenedPicture& picture) {
  NewFile copy;
  const lumigram::Outcome outcome = picture.CopyBeside(path.c_str(), &copy);
  if (outcome == lumigram::Outcome::kRefused) {
    throw FailureOf(path, " cannot have the picture's owner and mode");
  }
  if (outcome != lumigram::Outcome::kDone || !copy.SyncAndClose() || !NameUnlessTaken(path, &copy))
    throw FailureOf(path);
}

bool SyncFolderOf(const std::string& path) {
  const size_t size = FolderSize(path.c_str());
  const std::string name = size == 0 ? "." : path.substr(0, size);
  const Descriptor folder(Open(name.c_str(), O_RDONLY | O_DIRECTORY));
  return folder.Get() >= 0 && Sync(folder.Get());
}

}  // namespace

Backup::Backup(const std::string& path, const OpenedPicture& picture) : path_(path) {
  if (!IsBackup(path, picture)) {
    WriteCopy(path, picture);
    isOurs_ = true;
  }
  if (SyncFolderOf(path)) return;
  const int error = errno;
  if (isOurs_) unlink(path.c_str());  // the destructor is not called
  errno = error;
  throw FailureOf(path, " cannot be made durable");
}

Backup::~Backup() {
  if (isOurs_) unlink(path_.c_str());
}

}  // namespace lumigram::cli
