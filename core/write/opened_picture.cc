#include "core/write/opened_picture.h"

#include <stdlib.h>
#include <string.h>
#include <sys/file.h>

#include "core/base/path.h"
#include "lumigram.h"

namespace lumigram {
namespace {

bool IsSame(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool IsUnchanged(const struct stat& a, const struct stat& b) {
  return a.st_nlink == b.st_nlink && a.st_uid == b.st_uid && a.st_gid == b.st_gid &&
         a.st_mode == b.st_mode && a.st_size == b.st_size && IsSame(a.st_mtim, b.st_mtim) &&
         IsSame(a.st_ctim, b.st_ctim);
}

// False when another program has the lock. Any other error means that there are no locks here.
bool TryLock(int fd) {
  return Uninterrupted([=] { return flock(fd, LOCK_EX | LOCK_NB); }) == 0 || errno != EWOULDBLOCK;
}

void Pause() {
  constexpr timespec kPause = {0, 5'000'000};
  (void)nanosleep(&kPause, nullptr);
}

}  // namespace

OpenedPicture::Opening OpenedPicture::Open(const char* path, Purpose purpose,
                                           int waitMilliseconds) {
  spelling_ = PathForWriting(path, &spellingStorage_);
  if (spelling_ == nullptr) return Opening::kCannotOpen;
  target_.extension = strrchr(path + FolderSize(path), '.');
  if (target_.extension == nullptr) target_.extension = "";
  const uint64_t end = Nanoseconds() + static_cast<uint64_t>(waitMilliseconds) * 1'000'000;
  for (;;) {
    if (Opening o = OpenOnce(purpose); o != Opening::kOpened) return o;
    if (purpose == Purpose::kToRead || writeError_ != 0 || HasLock()) return Read();
    if (Nanoseconds() >= end) return Opening::kLocked;
    Pause();
  }
}

OpenedPicture::Opening OpenedPicture::OpenOnce(Purpose purpose) {
  if (stat(spelling_, &status_) != 0) return Opening::kCannotOpen;
  if (!S_ISREG(status_.st_mode)) return Opening::kNotRegular;
  const bool canWrite =
      purpose == Purpose::kToReplace && OpenTarget(spelling_, O_RDWR | O_NONBLOCK, &target_);
  writeError_ = canWrite ? 0 : purpose == Purpose::kToRead ? EBADF : errno;
  if (!canWrite && !OpenTarget(spelling_, O_RDONLY | O_NONBLOCK, &target_))
    return Opening::kCannotOpen;
  return Opening::kOpened;
}

// The lock is of use only if the path leads to the file that is locked: the program that had the
// lock may have replaced it.
bool OpenedPicture::HasLock() {
  struct stat now;
  return TryLock(target_.file.Get()) && fstat(target_.file.Get(), &status_) == 0 &&
         stat(spelling_, &now) == 0 && IsSameFile(now, status_);
}

OpenedPicture::Opening OpenedPicture::Read() {
  if (fstat(target_.file.Get(), &status_) != 0) return Opening::kCannotOpen;
  if (!S_ISREG(status_.st_mode)) return Opening::kNotRegular;
  if (status_.st_size == 0) return Opening::kEmpty;
  if (status_.st_size > kLumigramMaxPictureBytes) return Opening::kTooLarge;
  size_ = static_cast<size_t>(status_.st_size);
  bytes_.reset(static_cast<uint8_t*>(malloc(size_)));
  if (bytes_ == nullptr) return Opening::kCannotOpen;
  errno = 0;
  if (ReadAt(target_.file.Get(), {bytes_.get(), size_}, 0)) return Opening::kOpened;
  return errno == 0 ? Opening::kShrunk : Opening::kCannotOpen;
}

// A rename replaces what the path without links leads to, without following a link there.
Outcome OpenedPicture::Compare() const {
  struct stat named, replaced;
  if (stat(spelling_, &named) != 0 || lstat(target_.path, &replaced) != 0)
    return errno == ENOENT ? Outcome::kGone : Outcome::kChanged;
  const bool isSame = IsSameFile(named, status_) && IsSameFile(replaced, status_) &&
                      IsUnchanged(named, status_) && BeginsWith(target_.file.Get(), Bytes());
  return isSame ? Outcome::kDone : Outcome::kChanged;
}

Outcome OpenedPicture::CopyBeside(const char* path, NewFile* copy) const {
  const Outcome outcome = Prepare(target_, status_, path, Bytes(), copy);
  return outcome == Outcome::kRefused && copy->Get() < 0 ? Outcome::kFailed : outcome;
}

OpenedPicture::Replacement OpenedPicture::Replace(std::span<const uint8_t> bytes) {
  if (writeError_ != 0) {
    errno = writeError_;
    return Replacement::kCannotWrite;
  }
  switch (lumigram::Replace(&target_, status_, bytes, [this] { return Compare(); })) {
    case Outcome::kDone:
      return Replacement::kReplaced;
    case Outcome::kChanged:
      return Replacement::kChanged;
    case Outcome::kGone:
      return Replacement::kGone;
    case Outcome::kRefused:
    case Outcome::kFailed:
      break;
  }
  return Replacement::kCannotWrite;
}

}  // namespace lumigram
