// The steps of replacing a file, and the choice between a rename and writing in place.
#ifndef LUMIGRAM_CORE_WRITE_REPLACEMENT_H_
#define LUMIGRAM_CORE_WRITE_REPLACEMENT_H_

#include <stdint.h>
#include <sys/stat.h>

#include <span>

#include "core/write/target.h"
#include "core/write/temporary_file.h"

namespace lumigram {

// The result of a step, or of a check before the file is touched.
enum class Outcome {
  kDone,
  kRefused,  // another file cannot take the place: write in place
  kFailed,   // errno says why
  kChanged,  // the file is no longer the one that was read
  kGone,     // it was deleted
};

// A temporary file in the folder of the path, with these bytes and the access rights of the source,
// which has this status.
Outcome Prepare(const Target& source, const struct stat& status, const char* path,
                std::span<const uint8_t> bytes, NewFile* file);
Outcome SyncFile(NewFile* file);
Outcome Commit(const Target& target, NewFile* file);

// Writes the bytes over those of an open file. The old ones are put back when that fails, with
// errno set.
Outcome WriteInPlace(int fd, const struct stat& status, std::span<const uint8_t> bytes);

// Replaces a regular file of this status, whose descriptor is closed when it was written in place.
// check() is called when everything is prepared, right before the file is touched; unless it
// returns kDone, its result is returned.
template <typename Check>
Outcome Replace(Target* target, const struct stat& status, std::span<const uint8_t> bytes,
                Check check) {
  const auto byRename = [&] {
    if (status.st_nlink > 1) return Outcome::kRefused;
    NewFile file;
    if (Outcome o = Prepare(*target, status, target->path, bytes, &file); o != Outcome::kDone)
      return o;
    if (Outcome o = SyncFile(&file); o != Outcome::kDone) return o;
    if (Outcome o = check(); o != Outcome::kDone) return o;
    return Commit(*target, &file);
  };
  if (Outcome o = byRename(); o != Outcome::kRefused) return o;
  if (Outcome o = check(); o != Outcome::kDone) return o;
  if (Outcome o = WriteInPlace(target->file.Get(), status, bytes); o != Outcome::kDone) return o;
  return target->file.Close() ? Outcome::kDone : Outcome::kFailed;
}

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_WRITE_REPLACEMENT_H_
