#include "cli/files.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

#include "core/base/scoped.h"
#include "core/base/status.h"
#include "core/write/replacement.h"

namespace lumigram::cli {
namespace {

using Bytes = std::span<const uint8_t>;

void WriteToDevice(const std::string& path, Bytes bytes) {
  const ScopedFile file(fopen(path.c_str(), "wbe"));
  if (file == nullptr || fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size() ||
      fflush(file.get()) != 0) {
    throw FailureOfSystem(kCannotWrite);
  }
}

bool WriteNew(const Target& target, Bytes bytes) {
  NewFile file;
  return file.CreateBeside(target.path, "", 0666) && WriteAt(file.Get(), bytes, 0) &&
         file.SyncAndClose() && file.RenameTo(target.path);
}

bool ReplaceOld(Target* target, Bytes bytes) {
  struct stat status;
  return fstat(target->file.Get(), &status) == 0 &&
         Replace(target, status, bytes, [] { return Outcome::kDone; }) == Outcome::kDone;
}

}  // namespace

Failure FailureOfSystem(int32_t status, const std::string& words) {
  const std::string reason = errno == 0 ? "" : strerror(errno);
  return {status, words + (words.empty() || reason.empty() ? "" : ": ") + reason};
}

void OpenRegularFile(const std::string& path, OpenedPicture::Purpose purpose, OpenedPicture* file) {
  using Opening = OpenedPicture::Opening;
  switch (file->Open(path.c_str(), purpose)) {
    case Opening::kOpened:
      return;
    case Opening::kCannotOpen:
      throw FailureOfSystem(kCannotOpen);
    case Opening::kNotRegular:
      throw Failure(kCannotOpen, "not a regular file");
    case Opening::kEmpty:
      throw Failure(kBadArgument, "empty file");
    case Opening::kTooLarge:
      throw Failure(kBadArgument, "over 2 MiB");
    case Opening::kShrunk:
      throw Failure(kBadArgument, "the file became shorter");
    case Opening::kLocked:
      throw Failure(kCannotWrite, "another program has locked it for over ten seconds");
  }
}

std::vector<uint8_t> ReadRegularFile(const std::string& path) {
  OpenedPicture file;
  OpenRegularFile(path, OpenedPicture::Purpose::kToRead, &file);
  return {file.Bytes().begin(), file.Bytes().end()};
}

bool AreSameFile(const std::string& a, const std::string& b) {
  struct stat first, second;
  return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

void WriteFile(const std::string& path, Bytes bytes) {
  struct stat status;
  const bool isThere = stat(path.c_str(), &status) == 0;
  if (isThere && !S_ISREG(status.st_mode)) return WriteToDevice(path, bytes);
  Target target;
  target.extension = "";
  const bool isOpen = OpenTarget(path.c_str(), O_RDWR | O_NONBLOCK, &target);
  const bool isNew = !isOpen && errno == ENOENT;
  if (isOpen ? ReplaceOld(&target, bytes) : isNew && WriteNew(target, bytes)) return;
  throw FailureOfSystem(kCannotWrite);
}

bool NameUnlessTaken(const std::string& path, NewFile* file) {
  // Some file systems have no rename with flags, others no links. Where link() is used, the end of
  // the file's scope removes its first name.
  if (renameat2(AT_FDCWD, file->Path(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
    file->Keep();
    return true;
  }
  return (errno == EINVAL || errno == ENOSYS) && link(file->Path(), path.c_str()) == 0;
}

}  // namespace lumigram::cli
