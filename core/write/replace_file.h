// Replaces a picture's file by a complete new one.
#ifndef LUMIGRAM_CORE_WRITE_REPLACE_FILE_H_
#define LUMIGRAM_CORE_WRITE_REPLACE_FILE_H_

#include <stdint.h>

#include <span>

#include "core/base/status.h"

namespace lumigram {

// Makes the bytes the contents of the picture at path. Links in the path's last component are
// followed. Returns kOk; kCannotWrite when the extension is not that of a picture, or the picture
// is not a regular file, cannot be opened for reading and writing, or cannot be replaced. After a
// failure the picture is the old one.
//
// The new bytes go to a temporary file beside the picture. It gets the picture's owner, mode,
// access control list and, best effort, its other extended attributes; it is synced, and then
// takes the picture's place by rename(). After a kill or a loss of power the picture is the old
// one or the new one, and a temporary file may be left. The folder is not synced, so even after
// success a loss of power may bring the old picture back. On a file system that does not order
// data before metadata (ext4 with data=writeback), a loss of power can leave another file's old
// blocks in the picture.
//
// The picture is written in place when another file cannot take its place:
// - it has more than one hard link;
// - creating the temporary file or renaming it is refused with EACCES, EPERM, EROFS, EBUSY, EXDEV,
//   ENAMETOOLONG, ENOSYS, EOPNOTSUPP or ETXTBSY: a folder that is not ours, shared storage, a file
//   that is a mount point, a path without room for the temporary name, a file system without
//   rename;
// - its owner, mode or access control list cannot be given to another file.
// No memory, a full disk or quota and a failing device make both ways fail. In place, the bytes
// after the old end are written first, so that a full disk is found while the old bytes are still
// intact. The old bytes are kept in memory and put back when a step fails. A kill or a loss of
// power can leave a mixture of old and new bytes.
//
// A path that does not exist is created, with mode 0666 less the umask, and written directly; it is
// removed again when that fails.
Status ReplaceFile(const char* path, std::span<const uint8_t> bytes);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_WRITE_REPLACE_FILE_H_
