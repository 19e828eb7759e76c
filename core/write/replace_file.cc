#include "core/write/replace_file.h"

#include <limits.h>
#include <stdlib.h>
#include <string.h>

#include <initializer_list>

#include "core/base/byte_source.h"
#include "core/base/path.h"
#include "core/base/scoped.h"
#include "core/write/access_rights.h"
#include "core/write/temporary_file.h"

namespace lumigram {
namespace {

using Bytes = std::span<const uint8_t>;

// The result of an attempt to replace the picture by a new file.
enum class Outcome { kDone, kRefused /* write in place */, kFailed };

// Both predicates: whether the error means that another file cannot take the picture's place, so
// that writing in place may succeed. Without memory, on a full disk or on a failing device, writing
// in place would fail as well.
bool IsRefusedName(int error) {
  for (const int refusal :
       {EACCES, EPERM, EROFS, EBUSY, EXDEV, ENAMETOOLONG, ENOSYS, EOPNOTSUPP, ETXTBSY}) {
    if (error == refusal) return true;
  }
  return false;
}

bool IsRefusedAccess(int error) {
  for (const int failure : {ENOMEM, ENOSPC, EDQUOT, EIO}) {
    if (error == failure) return false;
  }
  return true;
}

Outcome RefusedIf(bool isRefused) { return isRefused ? Outcome::kRefused : Outcome::kFailed; }

// The picture that is replaced: its path without links in the last component, and its file.
struct Target {
  char path[PATH_MAX];
  const char* extension;
  Descriptor file;
};

// A temporary file beside the picture, with the picture's access rights and the new bytes.
Outcome Prepare(const Target& target, const struct stat& status, Bytes bytes, NewFile* file) {
  Access access{status, {}};
  if (!ReadAccessList(target.file.Get(), &access)) return RefusedIf(IsRefusedAccess(errno));
  if (!file->CreateBeside(target.path, target.extension, InitialMode(access)))
    return RefusedIf(IsRefusedName(errno));
  CopyAttributes(target.file.Get(), file->Get());
  if (!GiveAccess(access, file->Get())) return RefusedIf(IsRefusedAccess(errno));
  const bool isWritten = WriteAt(file->Get(), bytes, 0) && GiveModeBack(status, file->Get());
  return isWritten ? Outcome::kDone : Outcome::kFailed;
}

Outcome SyncFile(NewFile* file) { return file->SyncAndClose() ? Outcome::kDone : Outcome::kFailed; }

Outcome Commit(const Target& target, NewFile* file) {
  return file->RenameTo(target.path) ? Outcome::kDone : RefusedIf(IsRefusedName(errno));
}

Outcome ReplaceByRename(const Target& target, const struct stat& status, Bytes bytes) {
  NewFile file;
  if (Outcome o = Prepare(target, status, bytes, &file); o != Outcome::kDone) return o;
  if (Outcome o = SyncFile(&file); o != Outcome::kDone) return o;
  return Commit(target, &file);
}

bool WriteOver(int fd, size_t oldSize, Bytes bytes) {
  const size_t head = bytes.size() < oldSize ? bytes.size() : oldSize;
  return WriteAt(fd, bytes.subspan(head), static_cast<off_t>(head)) &&
         WriteAt(fd, bytes.first(head), 0) && (head == oldSize || Cut(fd, head)) && Sync(fd);
}

// Best effort: a device that has just failed may fail again.
void PutBack(int fd, Bytes old) {
  (void)Cut(fd, old.size());
  (void)WriteAt(fd, old, 0);
  (void)Sync(fd);
}

bool WriteInPlace(int fd, const struct stat& status, Bytes bytes) {
  if (static_cast<uint64_t>(status.st_size) > kMaxPosition) return false;
  const size_t oldSize = static_cast<size_t>(status.st_size);
  const ScopedBlock<uint8_t> block(static_cast<uint8_t*>(malloc(oldSize + 1)));
  if (block == nullptr || !ReadAt(fd, {block.get(), oldSize}, 0)) return false;
  const bool isWritten = WriteOver(fd, oldSize, bytes);
  if (!isWritten) PutBack(fd, {block.get(), oldSize});
  (void)GiveModeBack(status, fd);
  return isWritten;
}

bool WriteNew(const char* path, Bytes bytes) {
  NewFile file;
  if (!file.Create(path, 0666) || !WriteAt(file.Get(), bytes, 0) || !file.SyncAndClose())
    return false;
  file.Keep();
  return true;
}

bool Replace(Target* target, Bytes bytes) {
  struct stat status;
  if (fstat(target->file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  const Outcome outcome =
      status.st_nlink > 1 ? Outcome::kRefused : ReplaceByRename(*target, status, bytes);
  if (outcome != Outcome::kRefused) return outcome == Outcome::kDone;
  return WriteInPlace(target->file.Get(), status, bytes) && target->file.Close();
}

// Replaces the path by the target of the links in its last component. The target need not exist.
bool FollowLinks(char (&path)[PATH_MAX]) {
  constexpr int kMaxLinks = 40;  // as many as the kernel follows
  for (int i = 0; i <= kMaxLinks; ++i) {
    char link[PATH_MAX];
    const ssize_t n = readlink(path, link, sizeof(link));
    if (n < 0) return true;
    const size_t size = static_cast<size_t>(n);
    const size_t folder = link[0] == '/' ? 0 : FolderSize(path);
    if (folder + size >= sizeof(path)) return false;
    memcpy(path + folder, link, size);
    path[folder + size] = '\0';
  }
  return false;
}

// Opens the picture for reading and writing, and stores its path without links. False, with errno
// set, when it cannot be opened.
bool OpenTarget(const char* path, Target* target) {
  constexpr int kHow = O_RDWR | O_NOFOLLOW;
  if (strlen(path) >= sizeof(target->path)) {
    errno = ENAMETOOLONG;
    return false;
  }
  strcpy(target->path, path);
  target->file.Reset(Open(target->path, kHow));
  if (target->file.Get() < 0 && errno == ELOOP && FollowLinks(target->path))
    target->file.Reset(Open(target->path, kHow));
  return target->file.Get() >= 0;
}

}  // namespace

Status ReplaceFile(const char* path, Bytes bytes) {
  FileType type;
  if (GetFileType(path, &type) != kOk) return kCannotWrite;
  ScopedBlock<char> storage;
  const char* const spelling = PathForWriting(path, &storage);
  if (spelling == nullptr) return kCannotWrite;
  Target target;
  target.extension = strrchr(path, '.');
  const bool isThere = OpenTarget(spelling, &target);
  if (!isThere && errno != ENOENT) return kCannotWrite;
  const bool isWritten = isThere ? Replace(&target, bytes) : WriteNew(target.path, bytes);
  return isWritten ? kOk : kCannotWrite;
}

}  // namespace lumigram
