#include "core/file/replace_file.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/xattr.h>
#include <time.h>
#include <unistd.h>

#include <initializer_list>

#include "core/base/byte_source.h"
#include "core/base/scoped.h"
#include "core/file/path.h"

namespace lumigram {
namespace {

using Bytes = std::span<const uint8_t>;

// What came of an attempt to exchange the picture for a new file.
enum class Outcome { kDone, kRefused /* write in place */, kFailed };

// ------------------------------------------------------------------------------------------------
// Calls that a signal may interrupt

template <typename Call>
auto Uninterrupted(Call call) {
  for (;;) {
    const auto result = call();
    if (result >= 0 || errno != EINTR) return result;
  }
}

int Open(const char* path, int flags, mode_t mode = 0) {
  return Uninterrupted([&] { return open(path, flags | O_CLOEXEC, mode); });
}

bool ReadAt(int fd, std::span<uint8_t> out, off_t at) {
  while (!out.empty()) {
    const ssize_t n = Uninterrupted([&] { return pread(fd, out.data(), out.size(), at); });
    if (n <= 0) return false;
    out = out.subspan(static_cast<size_t>(n));
    at += n;
  }
  return true;
}

bool WriteAt(int fd, Bytes bytes, off_t at) {
  while (!bytes.empty()) {
    const ssize_t n = Uninterrupted([&] { return pwrite(fd, bytes.data(), bytes.size(), at); });
    if (n <= 0) return false;
    bytes = bytes.subspan(static_cast<size_t>(n));
    at += n;
  }
  return true;
}

bool Cut(int fd, size_t size) {
  return Uninterrupted([&] { return ftruncate(fd, static_cast<off_t>(size)); }) == 0;
}

// A file system that cannot sync has nothing better to offer.
bool Sync(int fd) {
  return Uninterrupted([&] { return fsync(fd); }) == 0 || errno == EINVAL || errno == ENOSYS;
}

// ------------------------------------------------------------------------------------------------
// Files

class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  ~Descriptor() { (void)Close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  void Reset(int fd) { fd_ = fd; }
  int Get() const { return fd_; }
  // An interrupted close() has closed.
  [[nodiscard]] bool Close() {
    const int fd = fd_;
    fd_ = -1;
    return fd < 0 || close(fd) == 0 || errno == EINTR;
  }

 private:
  int fd_;
};

// A file that is created here, and removed again unless it is kept.
class NewFile {
 public:
  NewFile() = default;
  ~NewFile() {
    if (path_ != nullptr) (void)unlink(path_);
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  // The path is borrowed. False, with errno set, also when it exists.
  [[nodiscard]] bool Create(const char* path, mode_t mode) {
    file_.Reset(Open(path, O_RDWR | O_CREAT | O_EXCL, mode));
    if (file_.Get() >= 0) path_ = path;
    return file_.Get() >= 0;
  }
  [[nodiscard]] bool SyncAndClose() { return Sync(file_.Get()) && file_.Close(); }
  void Keep() { path_ = nullptr; }
  int Get() const { return file_.Get(); }

 private:
  const char* path_ = nullptr;
  Descriptor file_;
};

// ------------------------------------------------------------------------------------------------
// Paths

size_t FolderSize(const char* path) {
  const char* slash = strrchr(path, '/');
  return slash == nullptr ? 0 : static_cast<size_t>(slash - path) + 1;
}

// Replaces the path by the one that the links in its last component lead to; it need not exist.
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

uint64_t Nanoseconds() {
  timespec now = {};
  (void)clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint64_t>(now.tv_sec) * 1000000000 + static_cast<uint64_t>(now.tv_nsec);
}

// Creates a file with a new name in the target's folder. False with errno set.
bool CreateBeside(const char* target, const char* extension, mode_t mode, char (&path)[PATH_MAX],
                  NewFile* file) {
  constexpr char kPrefix[] = ".lumigram-";
  constexpr size_t kLetters = 8;
  constexpr int kMaxTries = 100;
  const size_t folder = FolderSize(target);
  if (folder + strlen(kPrefix) + kLetters + strlen(extension) >= sizeof(path)) {
    errno = ENAMETOOLONG;
    return false;
  }
  memcpy(path, target, folder);
  strcpy(path + folder, kPrefix);
  char* const letters = path + folder + strlen(kPrefix);
  strcpy(letters + kLetters, extension);
  // A second writer in the same nanosecond finds the name taken and tries the next one.
  const uint64_t moment = Nanoseconds();
  for (int i = 0; i < kMaxTries; ++i) {
    uint64_t name = moment + static_cast<uint64_t>(i);
    for (size_t k = 0; k < kLetters; ++k, name /= 26)
      letters[k] = static_cast<char>('a' + name % 26);
    if (file->Create(path, mode)) return true;
    if (errno != EEXIST) return false;
  }
  return false;
}

// ------------------------------------------------------------------------------------------------
// Owner, mode, access control list and other extended attributes

constexpr char kAccessList[] = "system.posix_acl_access";

// What is asked for by its size first: the system sets room aside for as much as it is offered, and
// most pictures have none of this.
struct Attribute {
  ScopedBlock<char> value;
  ssize_t size = 0;  // negative: it could not be had, errno says why

  template <typename Get>
  void Take(Get get) {
    size = get(nullptr, 0);
    if (size <= 0) return;
    const size_t room = static_cast<size_t>(size);
    value.reset(static_cast<char*>(malloc(room)));
    size = value == nullptr ? -1 : get(value.get(), room);
  }
};

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

// As far as the system lets us: what it keeps to itself stays behind.
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

// Without one the size is 0.
Attribute ReadAccessList(int fd) {
  Attribute list = ReadAttribute(fd, kAccessList);
  const bool isNone = errno == ENODATA || errno == EOPNOTSUPP || errno == ENOSYS;
  if (list.size < 0 && isNone) list.size = 0;
  return list;
}

bool HasAccessList(const Attribute& wanted, int fd) {
  const Attribute given = ReadAccessList(fd);
  return given.size == wanted.size &&
         (given.size == 0 ||
          memcmp(given.value.get(), wanted.value.get(), static_cast<size_t>(given.size)) == 0);
}

// A new file may have inherited a list from its folder that the picture does not have.
bool GiveAccessList(const Attribute& wanted, int to) {
  if (HasAccessList(wanted, to)) return true;
  const int set = wanted.size == 0 ? fremovexattr(to, kAccessList)
                                   : fsetxattr(to, kAccessList, wanted.value.get(),
                                               static_cast<size_t>(wanted.size), 0);
  return set == 0;
}

// The mode comes behind the owner, whose change drops bits of it.
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

// Writing takes set-user-ID and set-group-ID bits away.
bool GiveModeBack(const struct stat& wanted, int fd) {
  return (wanted.st_mode & (S_ISUID | S_ISGID)) == 0 || fchmod(fd, wanted.st_mode & 07777) == 0;
}

// Who may do what with a picture.
struct Access {
  struct stat status;
  Attribute list;
};

// What a new file is created with: of what anybody at all may do with the picture, who may do it
// does not depend on the owner, group and list that the file has yet to be given.
mode_t FirstMode(const Access& access) {
  const mode_t mode = access.status.st_mode;
  const mode_t anybody = access.list.size == 0 ? mode >> 3 & mode & 07 : 0;
  return 0600 | anybody << 3 | anybody;
}

// Also behind giving it: a system may take a mode and drop bits of it.
bool HasAccess(const Access& wanted, int fd) {
  struct stat given;
  return fstat(fd, &given) == 0 && given.st_uid == wanted.status.st_uid &&
         given.st_gid == wanted.status.st_gid && given.st_mode == wanted.status.st_mode &&
         HasAccessList(wanted.list, fd);
}

Outcome OutcomeOfAccess(int error) {
  const bool isFailure = error == ENOMEM || error == ENOSPC || error == EDQUOT || error == EIO;
  return isFailure ? Outcome::kFailed : Outcome::kRefused;
}

// The list comes behind the mode, whose group bits it gives a new meaning.
Outcome GiveAccess(const Access& wanted, int to) {
  errno = 0;  // what comes out other than wanted leaves it so
  if (HasAccess(wanted, to)) return Outcome::kDone;
  if (GiveOwnerAndMode(wanted.status, to) && GiveAccessList(wanted.list, to) &&
      HasAccess(wanted, to)) {
    return Outcome::kDone;
  }
  return OutcomeOfAccess(errno);
}

// ------------------------------------------------------------------------------------------------
// The three ways to write

Outcome OutcomeOfRefusal(int error) {
  for (const int refusal : {EACCES, EPERM, EROFS, EBUSY, EXDEV, ENAMETOOLONG, ENOSYS, EOPNOTSUPP,
                            ETXTBSY}) {
    if (error == refusal) return Outcome::kRefused;
  }
  return Outcome::kFailed;
}

Outcome ReplaceByRename(const char* target, const char* extension, int picture,
                        const struct stat& status, Bytes bytes) {
  const Access access{status, ReadAccessList(picture)};
  if (access.list.size < 0) return OutcomeOfAccess(errno);
  char path[PATH_MAX];
  NewFile file;
  if (!CreateBeside(target, extension, FirstMode(access), path, &file))
    return OutcomeOfRefusal(errno);
  CopyAttributes(picture, file.Get());
  if (Outcome o = GiveAccess(access, file.Get()); o != Outcome::kDone) return o;
  if (!WriteAt(file.Get(), bytes, 0) || !GiveModeBack(status, file.Get()) || !file.SyncAndClose())
    return Outcome::kFailed;
  if (rename(path, target) != 0) return OutcomeOfRefusal(errno);
  file.Keep();
  return Outcome::kDone;
}

bool WriteOver(int fd, size_t oldSize, Bytes bytes) {
  const size_t head = bytes.size() < oldSize ? bytes.size() : oldSize;
  return WriteAt(fd, bytes.subspan(head), static_cast<off_t>(head)) &&
         WriteAt(fd, bytes.first(head), 0) && (head == oldSize || Cut(fd, head)) && Sync(fd);
}

// As far as it goes: a device that has just failed may fail again.
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

bool Replace(const char* target, const char* extension, Descriptor* picture, Bytes bytes) {
  struct stat status;
  if (fstat(picture->Get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  const Outcome outcome = status.st_nlink > 1
                              ? Outcome::kRefused
                              : ReplaceByRename(target, extension, picture->Get(), status, bytes);
  if (outcome != Outcome::kRefused) return outcome == Outcome::kDone;
  return WriteInPlace(picture->Get(), status, bytes) && picture->Close();
}

// Opens the picture to be written, and stores the path that it has behind the links; false, with
// errno set, when it cannot be opened.
bool OpenTarget(const char* path, char (&target)[PATH_MAX], Descriptor* picture) {
  constexpr int kHow = O_RDWR | O_NOFOLLOW;
  if (strlen(path) >= sizeof(target)) {
    errno = ENAMETOOLONG;
    return false;
  }
  strcpy(target, path);
  picture->Reset(Open(target, kHow));
  if (picture->Get() < 0 && errno == ELOOP && FollowLinks(target))
    picture->Reset(Open(target, kHow));
  return picture->Get() >= 0;
}

}  // namespace

Status ReplaceFile(const char* path, std::span<const uint8_t> bytes) {
  FileType type;
  if (GetFileType(path, &type) != kOk) return kCannotWrite;
  ScopedBlock<char> storage;
  const char* const spelling = PathForWriting(path, &storage);
  if (spelling == nullptr) return kCannotWrite;
  char target[PATH_MAX];
  Descriptor picture;
  const bool isThere = OpenTarget(spelling, target, &picture);
  if (!isThere && errno != ENOENT) return kCannotWrite;
  const bool isWritten =
      isThere ? Replace(target, strrchr(path, '.'), &picture, bytes) : WriteNew(target, bytes);
  return isWritten ? kOk : kCannotWrite;
}

}  // namespace lumigram
