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

// Stores the path that the links in the last component lead to; it need not exist.
bool FollowLinks(const char* path, char (&target)[PATH_MAX]) {
  constexpr int kMaxLinks = 40;  // as many as the kernel follows
  if (strlen(path) >= sizeof(target)) return false;
  strcpy(target, path);
  for (int i = 0; i < kMaxLinks; ++i) {
    char link[PATH_MAX];
    const ssize_t n = readlink(target, link, sizeof(link));
    if (n < 0) return true;
    const size_t size = static_cast<size_t>(n);
    const size_t folder = link[0] == '/' ? 0 : FolderSize(target);
    if (folder + size >= sizeof(target)) return false;
    memcpy(target + folder, link, size);
    target[folder + size] = '\0';
  }
  return false;
}

// Something that differs among threads, processes and moments, without state of our own.
uint64_t Seed() {
  timespec now = {};
  (void)clock_gettime(CLOCK_MONOTONIC, &now);
  const uint64_t stack = reinterpret_cast<uintptr_t>(&now);
  return static_cast<uint64_t>(now.tv_sec) * 1000000000 + static_cast<uint64_t>(now.tv_nsec) +
         (static_cast<uint64_t>(getpid()) << 40) + (stack << 20);
}

// Spreads the difference of two seeds over all their bits, and so over all letters.
uint64_t Mix(uint64_t x) {
  x = (x ^ x >> 30) * 0xBF58476D1CE4E5B9;
  x = (x ^ x >> 27) * 0x94D049BB133111EB;
  return x ^ x >> 31;
}

// Creates a file of a new name in the target's folder, open to nobody else. False with errno set.
bool CreateBeside(const char* target, const char* extension, char (&path)[PATH_MAX],
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
  const uint64_t seed = Seed();
  for (int i = 0; i < kMaxTries; ++i) {
    uint64_t name = Mix(seed + static_cast<uint64_t>(i));
    for (size_t k = 0; k < kLetters; ++k, name /= 26)
      letters[k] = static_cast<char>('a' + name % 26);
    if (file->Create(path, 0600)) return true;
    if (errno != EEXIST) return false;
  }
  return false;
}

// ------------------------------------------------------------------------------------------------
// Owner, mode, access control list and other extended attributes

constexpr char kAccessList[] = "system.posix_acl_access";
constexpr size_t kMaxAttributeBytes = 65536;  // of a value, and of the list of names

using AttributeBlock = ScopedBlock<char>;

AttributeBlock NewAttributeBlock() {
  return AttributeBlock(static_cast<char*>(malloc(kMaxAttributeBytes)));
}

// As far as the system lets us: what it keeps to itself stays behind.
void CopyAttributes(int from, int to) {
  const AttributeBlock names = NewAttributeBlock();
  const AttributeBlock value = NewAttributeBlock();
  if (names == nullptr || value == nullptr) return;
  const ssize_t size = flistxattr(from, names.get(), kMaxAttributeBytes);
  for (ssize_t at = 0; at < size; at += static_cast<ssize_t>(strlen(names.get() + at)) + 1) {
    const char* const name = names.get() + at;
    if (strcmp(name, kAccessList) == 0) continue;
    const ssize_t n = fgetxattr(from, name, value.get(), kMaxAttributeBytes);
    if (n >= 0) (void)fsetxattr(to, name, value.get(), static_cast<size_t>(n), 0);
  }
}

// The list's size, 0 for none; negative, with errno set, when it cannot be had.
ssize_t ReadAccessList(int fd, const AttributeBlock& list) {
  const ssize_t n = fgetxattr(fd, kAccessList, list.get(), kMaxAttributeBytes);
  return n < 0 && (errno == ENODATA || errno == EOPNOTSUPP || errno == ENOSYS) ? 0 : n;
}

// A new file may have inherited a list from its folder that the picture does not have.
bool GiveAccessList(int from, int to) {
  const AttributeBlock wanted = NewAttributeBlock();
  const AttributeBlock given = NewAttributeBlock();
  if (wanted == nullptr || given == nullptr) return false;
  const ssize_t wantedSize = ReadAccessList(from, wanted);
  if (wantedSize < 0) return false;
  const size_t size = static_cast<size_t>(wantedSize);
  const auto matches = [&] {
    const ssize_t n = ReadAccessList(to, given);
    return n == wantedSize && memcmp(wanted.get(), given.get(), size) == 0;
  };
  if (matches()) return true;
  const int set =
      size == 0 ? fremovexattr(to, kAccessList) : fsetxattr(to, kAccessList, wanted.get(), size, 0);
  return set == 0 && matches();
}

bool GiveOwner(const struct stat& wanted, int to) {
  constexpr uid_t kSameUser = static_cast<uid_t>(-1);
  constexpr gid_t kSameGroup = static_cast<gid_t>(-1);
  struct stat given;
  if (fstat(to, &given) != 0) return false;
  const uid_t user = given.st_uid == wanted.st_uid ? kSameUser : wanted.st_uid;
  const gid_t group = given.st_gid == wanted.st_gid ? kSameGroup : wanted.st_gid;
  return (user == kSameUser && group == kSameGroup) || fchown(to, user, group) == 0;
}

// Also after writing, which takes a set-user-ID bit away.
bool GiveMode(const struct stat& wanted, int to) {
  constexpr mode_t kModeBits = 07777;
  struct stat given;
  if (fstat(to, &given) != 0) return false;
  return (given.st_mode & kModeBits) == (wanted.st_mode & kModeBits) ||
         fchmod(to, wanted.st_mode & kModeBits) == 0;
}

// Whether owner and mode have come out as wanted: a system may take a mode and drop bits of it.
bool HasAccess(const struct stat& wanted, int fd) {
  struct stat given;
  return fstat(fd, &given) == 0 && given.st_uid == wanted.st_uid && given.st_gid == wanted.st_gid &&
         given.st_mode == wanted.st_mode;
}

// The mode comes behind the owner, whose change drops bits of it, and the list behind the mode,
// whose group bits it gives a new meaning.
Outcome GiveAccess(int from, const struct stat& wanted, int to) {
  CopyAttributes(from, to);
  errno = 0;  // of the steps that count; what comes out other than wanted leaves it so
  if (GiveOwner(wanted, to) && GiveMode(wanted, to) && GiveAccessList(from, to) &&
      HasAccess(wanted, to)) {
    return Outcome::kDone;
  }
  const bool isFailure = errno == ENOMEM || errno == ENOSPC || errno == EDQUOT || errno == EIO;
  return isFailure ? Outcome::kFailed : Outcome::kRefused;
}

// ------------------------------------------------------------------------------------------------
// The three ways to write

Outcome OutcomeOfRefusal(int error) {
  const bool isRefused =
      error == EACCES || error == EPERM || error == EROFS || error == EBUSY || error == EXDEV;
  return isRefused ? Outcome::kRefused : Outcome::kFailed;
}

Outcome ReplaceByRename(const char* target, const char* extension, int picture,
                        const struct stat& status, Bytes bytes) {
  char path[PATH_MAX];
  NewFile file;
  if (!CreateBeside(target, extension, path, &file)) return OutcomeOfRefusal(errno);
  if (Outcome o = GiveAccess(picture, status, file.Get()); o != Outcome::kDone) return o;
  if (!WriteAt(file.Get(), bytes, 0) || !GiveMode(status, file.Get()) || !file.SyncAndClose())
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
  (void)GiveMode(status, fd);
  return isWritten;
}

bool WriteNew(const char* path, Bytes bytes) {
  NewFile file;
  if (!file.Create(path, 0666) || !WriteAt(file.Get(), bytes, 0) || !file.SyncAndClose())
    return false;
  file.Keep();
  return true;
}

bool Replace(const char* target, const char* extension, Bytes bytes) {
  Descriptor picture(Open(target, O_RDWR));
  if (picture.Get() < 0) return errno == ENOENT && WriteNew(target, bytes);
  struct stat status;
  if (fstat(picture.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  const Outcome outcome = status.st_nlink > 1
                              ? Outcome::kRefused
                              : ReplaceByRename(target, extension, picture.Get(), status, bytes);
  if (outcome != Outcome::kRefused) return outcome == Outcome::kDone;
  return WriteInPlace(picture.Get(), status, bytes) && picture.Close();
}

}  // namespace

Status ReplaceFile(const char* path, std::span<const uint8_t> bytes) {
  FileType type;
  if (GetFileType(path, &type) != kOk) return kCannotWrite;
  ScopedBlock<char> storage;
  const char* const spelling = PathForWriting(path, &storage);
  char target[PATH_MAX];
  if (spelling == nullptr || !FollowLinks(spelling, target)) return kCannotWrite;
  return Replace(target, strrchr(path, '.'), bytes) ? kOk : kCannotWrite;
}

}  // namespace lumigram
