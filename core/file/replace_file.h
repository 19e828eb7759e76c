// A picture's file, replaced by a complete new one.
#ifndef LUMIGRAM_CORE_FILE_REPLACE_FILE_H_
#define LUMIGRAM_CORE_FILE_REPLACE_FILE_H_

#include <stdint.h>

#include <span>

#include "core/base/status.h"

namespace lumigram {

// Makes the bytes the contents of the picture at path. Links in the path's last component are
// followed. Returns kOk, or kCannotWrite when the extension is not that of a picture, or the
// picture is not a regular file, cannot be opened for reading and writing, or cannot be replaced;
// it is then the old one.
//
// The bytes are written to a new file beside the picture, `.lumigram-` + eight letters + the
// extension, which gets the picture's owner, mode, access control list and, as far as the system
// lets us, its other extended attributes, is synced, and takes the picture's place by rename():
// whenever the process is killed, the picture is the old one or the new one. The folder is not
// synced: after a loss of power, too, it is one of them, but which is not promised. No temporary
// file is left, except by a process that is killed.
//
// In place instead, when the picture cannot be exchanged for another file:
// - it has more than one hard link;
// - creating the new file or renaming it is refused with EACCES, EPERM, EROFS, EBUSY, EXDEV,
//   ENAMETOOLONG, ENOSYS, EOPNOTSUPP or ETXTBSY: a folder that is not ours, storage shared through a
//   mount, a file that is itself a mount, a path with no room for the new file's name, a file system
//   that does not rename;
// - its owner, mode or access list cannot be given to another file. But no memory, a full disk or
//   quota and a failing device are failures here as everywhere else.
// Then the bytes are written over the old ones, first those beyond the old end, so that a full disk
// shows before harm is done. The old bytes are kept in memory and put back when a step fails. Only
// in this case can a process that is killed leave a mixture of both.
//
// A path that does not exist is created, with mode 0666 less the umask, and written directly; it is
// removed again when that fails.
Status ReplaceFile(const char* path, std::span<const uint8_t> bytes);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_FILE_REPLACE_FILE_H_
