#include "core/write/access_rights.h"

#include <errno.h>
#include <string.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace lumigram {
namespace {

constexpr char kAccessList[] = "system.posix_acl_access";

Attribute ReadNames(int fd) {
  Attribute names;
  names.Take([=](char* out, size_t room) { return flistxattr(fd, out, room); });
  return names;
}

Attribute ReadAttribute(int fd, const char* name) {
  Attribute attribute;
  attribute.Take([=](char* out, size_t room) { return fgetxattr(fd, name, out, room); });
  return attribute;
}

// Without a list the size is 0.
Attribute AccessListOf(int fd) {
  Attribute list = ReadAttribute(fd, kAccessList);
  const bool isNone = errno == ENODATA || errno == EOPNOTSUPP || errno == ENOSYS;
  if (list.size < 0 && isNone) list.size = 0;
  return list;
}

bool HasAccessList(const Attribute& wanted, int fd) {
  const Attribute given = AccessListOf(fd);
  return given.size == wanted.size &&
         (given.size == 0 ||
          memcmp(given.value.get(), wanted.value.get(), static_cast<size_t>(given.size)) == 0);
}

// A new file may have inherited a list from its folder, even if the picture has none.
bool GiveAccessList(const Attribute& wanted, int to) {
  if (HasAccessList(wanted, to)) return true;
  const int set = wanted.size == 0 ? fremovexattr(to, kAccessList)
                                   : fsetxattr(to, kAccessList, wanted.value.get(),
                                               static_cast<size_t>(wanted.size), 0);
  return set == 0;
}

// The mode is set after the owner, because a change of owner clears bits of the mode.
bool GiveOwnerAndMode(const struct stat& wanted, int to) {
  constexpr uid_t kSameUser = static_cast<uid_t>(-1);
  constexpr gid_t kSameGroup = static_cast<gid_t>(-1);
  struct stat given;
  if (fstat(to, &given) != 0) return false;
  const uid_t user = given.st_uid == wanted.st_uid ? kSameUser : wanted.st_uid;
  const gid_t group = given.st_gid == wanted.st_gid ? kSameGroup : wanted.st_gid;
  const bool isOwned = user == kSameUser && group == kSameGroup;
  if (!isOwned && fchown(to, user, group) != 0) return false;
  return (isOwned && given.st_mode == wanted.st_mode) || fchmod(to, wanted.st_mode & 07777) == 0;
}

bool HasAccess(const Access& wanted, int fd) {
  struct stat given;
  return fstat(fd, &given) == 0 && given.st_uid == wanted.status.st_uid &&
         given.st_gid == wanted.status.st_gid && given.st_mode == wanted.status.st_mode &&
         HasAccessList(wanted.list, fd);
}

}  // namespace

bool ReadAccessList(int fd, Access* access) {
  access->list = AccessListOf(fd);
  return access->list.size >= 0;
}

mode_t InitialMode(const Access& access) {
  const mode_t mode = access.status.st_mode;
  const mode_t anybody = access.list.size == 0 ? mode >> 3 & mode & 07 : 0;
  return 0600 | anybody << 3 | anybody;
}

// The list is set after the mode, because a list changes the meaning of the group bits.
bool GiveAccess(const Access& wanted, int to) {
  errno = 0;
  return HasAccess(wanted, to) || (GiveOwnerAndMode(wanted.status, to) &&
                                   GiveAccessList(wanted.list, to) && HasAccess(wanted, to));
}

bool GiveModeBack(const struct stat& wanted, int fd) {
  return (wanted.st_mode & (S_ISUID | S_ISGID)) == 0 || fchmod(fd, wanted.st_mode & 07777) == 0;
}

void CopyAttributes(int from, int to) {
  const Attribute names = ReadNames(from);
  for (ssize_t at = 0; at < names.size;) {
    const char* const name = names.value.get() + at;
    at += static_cast<ssize_t>(strlen(name)) + 1;
    if (strcmp(name, kAccessList) == 0) continue;
    const Attribute attribute = ReadAttribute(from, name);
    if (attribute.size >= 0)
      (void)fsetxattr(to, name, attribute.value.get(), static_cast<size_t>(attribute.size), 0);
  }
}

}  // namespace lumigram
