// A picture that is read, and replaced only while it is still the one that was read.
#ifndef LUMIGRAM_CORE_WRITE_OPENED_PICTURE_H_
#define LUMIGRAM_CORE_WRITE_OPENED_PICTURE_H_

#include <stdint.h>
#include <sys/stat.h>

#include <span>

#include "core/base/scoped.h"
#include "core/write/replacement.h"
#include "core/write/target.h"

namespace lumigram {

// Reads, changes and replaces a picture so that no update of another program is lost:
//
// - Open() locks the picture with flock() before it reads. Of two programs that do so, one waits
//   for the other, and reads what the other has written. The lock is on the picture itself. When
//   it is held, the path must still lead to that file; otherwise it is opened again.
// - Replace() compares, right before the picture is replaced, the file that the path leads to with
//   the file that was opened: device, inode, links, owner, mode, size, times of modification and
//   status change, and the bytes, because two changes within a tick of the clock have the same
//   time. So a program that takes no lock is noticed unless it saves between this comparison and
//   the rename.
//
// On a file system without locks, the comparison is all there is. The lock ends with the object, or
// with the process.
class OpenedPicture {
 public:
  enum class Purpose { kToRead, kToReplace };  // only kToReplace locks
  enum class Opening {
    kOpened,
    kCannotOpen,  // errno says why
    kNotRegular,  // a folder, a pipe, a device: not opened
    kEmpty,
    kTooLarge,  // over 2 MiB
    kShrunk,    // became shorter while it was read
    kLocked,    // another program kept the lock, or kept replacing the picture, for too long
  };
  enum class Replacement {
    kReplaced,
    kChanged,      // it is no longer the picture that was opened: open it again
    kGone,         // it was deleted
    kCannotWrite,  // errno says why; the picture is the old one
  };
  static constexpr int kWaitMilliseconds = 10'000;

  OpenedPicture() = default;
  OpenedPicture(const OpenedPicture&) = delete;
  OpenedPicture& operator=(const OpenedPicture&) = delete;

  // Opens and reads the regular file at a path, spelled as for OpenFile(); links are followed. The
  // path must outlive the object. A picture that cannot be opened for writing is read without a
  // lock, and cannot be replaced. To be called once.
  Opening Open(const char* path, Purpose purpose, int waitMilliseconds = kWaitMilliseconds);

  // The bytes that were read.
  std::span<const uint8_t> Bytes() const { return {bytes_.get(), size_}; }

  // A temporary file in the folder of the path, with the bytes, access rights and attributes of the
  // picture. kRefused: it could be created, but not with these rights; kFailed: errno says why.
  Outcome CopyBeside(const char* path, NewFile* copy) const;

  // Replaces the picture as ReplaceFile() does, but creates no file. To be called once.
  Replacement Replace(std::span<const uint8_t> bytes);

 private:
  Opening OpenOnce(Purpose purpose);
  bool HasLock();
  Opening Read();
  Outcome Compare() const;

  ScopedBlock<char> spellingStorage_;
  const char* spelling_ = nullptr;
  Target target_;
  int writeError_ = 0;  // why the picture cannot be opened for writing
  struct stat status_;
  ScopedBlock<uint8_t> bytes_;
  size_t size_ = 0;
};

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_WRITE_OPENED_PICTURE_H_
