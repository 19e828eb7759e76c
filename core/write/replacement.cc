#include "core/write/replacement.h"

#include <stdlib.h>

#include <initializer_list>

#include "core/base/byte_source.h"
#include "core/base/scoped.h"
#include "core/write/access_rights.h"

namespace lumigram {
namespace {

using Bytes = std::span<const uint8_t>;

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
Outcome DoneIf(bool isDone) { return isDone ? Outcome::kDone : Outcome::kFailed; }

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

}  // namespace

Outcome Prepare(const Target& source, const struct stat& status, const char* path, Bytes bytes,
                NewFile* file) {
  Access access{status, {}};
  if (!ReadAccessList(source.file.Get(), &access)) return RefusedIf(IsRefusedAccess(errno));
  if (!file->CreateBeside(path, source.extension, InitialMode(access)))
    return RefusedIf(IsRefusedName(errno));
  CopyAttributes(source.file.Get(), file->Get());
  if (!GiveAccess(access, file->Get())) return RefusedIf(IsRefusedAccess(errno));
  return DoneIf(WriteAt(file->Get(), bytes, 0) && GiveModeBack(status, file->Get()));
}

Outcome SyncFile(NewFile* file) { return DoneIf(file->SyncAndClose()); }

Outcome Commit(const Target& target, NewFile* file) {
  return file->RenameTo(target.path) ? Outcome::kDone : RefusedIf(IsRefusedName(errno));
}

Outcome WriteInPlace(int fd, const struct stat& status, Bytes bytes) {
  if (static_cast<uint64_t>(status.st_size) > kMaxPosition) return Outcome::kFailed;
  const size_t oldSize = static_cast<size_t>(status.st_size);
  const ScopedBlock<uint8_t> block(static_cast<uint8_t*>(malloc(oldSize + 1)));
  if (block == nullptr || !ReadAt(fd, {block.get(), oldSize}, 0)) return Outcome::kFailed;
  const bool isWritten = WriteOver(fd, oldSize, bytes);
  const int error = errno;
  if (!isWritten) PutBack(fd, {block.get(), oldSize});
  (void)GiveModeBack(status, fd);
  errno = error;
  return DoneIf(isWritten);
}

}  // namespace lumigram
