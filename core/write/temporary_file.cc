#include "core/write/temporary_file.h"

#include <stdio.h>
#include <string.h>

namespace lumigram {
size_t FolderSize(const char* path) {
  const char* slash = strrchr(path, '/');
  return slash == nullptr ? 0 : static_cast<size_t>(slash - path) + 1;
}

NewFile::~NewFile() {
  if (isOurs_) (void)unlink(path_);
}

bool NewFile::OpenNew(mode_t mode) {
  file_.Reset(Open(path_, O_RDWR | O_CREAT | O_EXCL, mode));
  isOurs_ = file_.Get() >= 0;
  return isOurs_;
}

bool NewFile::Create(const char* path, mode_t mode) {
  if (strlen(path) >= sizeof(path_)) {
    errno = ENAMETOOLONG;
    return false;
  }
  strcpy(path_, path);
  return OpenNew(mode);
}

bool NewFile::CreateBeside(const char* target, const char* extension, mode_t mode) {
  constexpr size_t kLetters = 8;
  constexpr int kMaxTries = 100;
  const size_t folder = FolderSize(target);
  if (folder + kTemporaryPrefix.size() + kLetters + strlen(extension) >= sizeof(path_)) {
    errno = ENAMETOOLONG;
    return false;
  }
  memcpy(path_, target, folder);
  memcpy(path_ + folder, kTemporaryPrefix.data(), kTemporaryPrefix.size());
  char* const letters = path_ + folder + kTemporaryPrefix.size();
  strcpy(letters + kLetters, extension);
  // A second writer in the same nanosecond finds the name taken and tries the next one.
  const uint64_t moment = Nanoseconds();
  for (int i = 0; i < kMaxTries; ++i) {
    uint64_t name = moment + static_cast<uint64_t>(i);
    for (size_t k = 0; k < kLetters; ++k, name /= 26)
      letters[k] = static_cast<char>('a' + name % 26);
    if (OpenNew(mode)) return true;
    if (errno != EEXIST) return false;
  }
  return false;
}

bool NewFile::RenameTo(const char* target) {
  if (rename(path_, target) != 0) return false;
  isOurs_ = false;
  return true;
}

}  // namespace lumigram
