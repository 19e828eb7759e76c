#include "core/write/replace_file.h"

#include <string.h>

#include "core/base/path.h"
#include "core/base/scoped.h"
#include "core/write/replacement.h"

namespace lumigram {
namespace {

using Bytes = std::span<const uint8_t>;

bool WriteNew(const char* path, Bytes bytes) {
  NewFile file;
  if (!file.Create(path, 0666) || !WriteAt(file.Get(), bytes, 0) || !file.SyncAndClose())
    return false;
  file.Keep();
  return true;
}

bool ReplaceTarget(Target* target, Bytes bytes) {
  struct stat status;
  if (fstat(target->file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  return Replace(target, status, bytes, [] { return Outcome::kDone; }) == Outcome::kDone;
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
  const bool isThere = OpenTarget(spelling, O_RDWR, &target);
  if (!isThere && errno != ENOENT) return kCannotWrite;
  const bool isWritten = isThere ? ReplaceTarget(&target, bytes) : WriteNew(target.path, bytes);
  return isWritten ? kOk : kCannotWrite;
}

}  // namespace lumigram
