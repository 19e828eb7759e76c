// Part of the shared library only: fstat(), stat() and lstat() without functions that came with
// glibc 2.33. Before that release the three were inline functions over others, which new programs
// cannot use. A library linked with a later glibc would need 2.33 for these three alone. Other C
// libraries have always had them, and there these definitions are left out.
//
// On the machines below, the kernel's structure is glibc's struct stat64, and neither it nor the
// system calls can change. Calls in the library bind to these definitions, because the library does
// not export their names.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#if defined(__GLIBC__) && !defined(__ANDROID__)
#if defined(__arm__)
constexpr long kFileStatus = SYS_fstat64;
constexpr long kPathStatus = SYS_fstatat64;
#define LUMIGRAM_HAS_STATUS_CALLS
#elif defined(__aarch64__) || (defined(__x86_64__) && defined(__LP64__))
constexpr long kFileStatus = SYS_fstat;
constexpr long kPathStatus = SYS_newfstatat;
#define LUMIGRAM_HAS_STATUS_CALLS
#endif
#endif

#ifdef LUMIGRAM_HAS_STATUS_CALLS

// _FILE_OFFSET_BITS=64 gives the calls these names. With 64-bit times on ARM they would have others.
int fstat64(int fd, struct stat64* status) noexcept {
  return static_cast<int>(syscall(kFileStatus, fd, status));
}

int stat64(const char* path, struct stat64* status) noexcept {
  return static_cast<int>(syscall(kPathStatus, AT_FDCWD, path, status, 0));
}

int lstat64(const char* path, struct stat64* status) noexcept {
  return static_cast<int>(syscall(kPathStatus, AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW));
}

#endif
