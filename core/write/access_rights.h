// The owner, mode, access control list and other extended attributes of a file.
#ifndef LUMIGRAM_CORE_WRITE_ACCESS_RIGHTS_H_
#define LUMIGRAM_CORE_WRITE_ACCESS_RIGHTS_H_

#include <stdlib.h>
#include <sys/stat.h>
#include <sys/types.h>

#include "core/base/scoped.h"

namespace lumigram {

// The value of an extended attribute, or the list of their names. Its size is queried first: the
// kernel allocates as much memory as the caller offers, and most pictures have no attributes.
struct Attribute {
  ScopedBlock<char> value;
  ssize_t size = 0;  // negative: it cannot be read, and errno is set

  template <typename Get>
  void Take(Get get) {
    size = get(nullptr, 0);
    if (size <= 0) return;
    const size_t room = static_cast<size_t>(size);
    value.reset(static_cast<char*>(malloc(room)));
    size = value == nullptr ? -1 : get(value.get(), room);
  }
};

// The owner, group, mode and access control list of a file.
struct Access {
  struct stat status;
  Attribute list;  // size 0: none
};

// Reads the list of an open file into access, whose status is already set. False with errno set.
bool ReadAccessList(int fd, Access* access);

// The initial mode of a new file that is to get this access: owner read and write, plus the bits
// that group and others both have, unless there is a list. Nobody gains access before owner, mode
// and list are set.
mode_t InitialMode(const Access& access);

// Gives a file this access. False when the file does not have it afterwards; errno is 0 if every
// call succeeded, because a file system may take a mode and drop bits of it.
bool GiveAccess(const Access& wanted, int to);

// Restores the set-user-ID and set-group-ID bits, because writing clears them.
bool GiveModeBack(const struct stat& wanted, int fd);

// Best effort: attributes that we may not read or set are not copied.
void CopyAttributes(int from, int to);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_WRITE_ACCESS_RIGHTS_H_
