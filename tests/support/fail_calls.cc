#include "tests/support/fail_calls.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lumigram::test {
namespace {

struct Plan {
  const char* calls;
  int nth, error;
  bool fromThenOn;
  int made;
  const char* failed;
  bool isNow;
} plan;

bool Fails(const char* call) {
  if (plan.calls == nullptr) return false;
  const int index = strstr(plan.calls, call) != nullptr ? plan.made++ : -1;
  plan.isNow = plan.fromThenOn ? index >= plan.nth : index == plan.nth;
  if (!plan.isNow) return false;
  if (plan.failed == nullptr) plan.failed = call;
  constexpr char kProgram[] = "ls -l /proc/self/fd | grep -q '[.]png$' && exit 9; exit 8";
  if (plan.error == kExec) execl("/bin/sh", "sh", "-c", kProgram, nullptr);
  errno = plan.error;
  return plan.error > 0;
}

size_t Part(size_t n) { return plan.isNow && plan.error == kHalf ? (n + 1) / 2 : n; }

const char* Take(const char* path) {
  if (plan.isNow && plan.error == kTaken) (void)mknod(path, S_IFREG | 0600, 0);
  return path;
}

}  // namespace

FailCalls::FailCalls(const char* calls, int nth, int error, Times times) {
  plan = {calls, nth, error, times == kFromThenOn || error == kHalf, 0, nullptr, false};
}
FailCalls::~FailCalls() { plan = {}; }
const char* FailCalls::Failed() const { return plan.failed; }

int InChild(const std::function<int()>& run) {
  const pid_t child = fork();
  if (child == 0) _exit(run());
  int status = 0;
  waitpid(child, &status, 0);
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

// With _FILE_OFFSET_BITS=64, calls have these names.
extern "C" {
#define WRAP(type, failure, name, parameters, arguments) \
  type __real_##name parameters;                         \
  type __wrap_##name parameters { return Fails(#name) ? failure : __real_##name arguments; }
void* __real_malloc(size_t n);
void* __wrap_malloc(size_t n) {
  void* const block = Fails("malloc") ? nullptr : __real_malloc(n);
  return block == nullptr ? nullptr : memset(block, 0xA5, n);  // so that no test relies on zeros
}
WRAP(void*, nullptr, calloc, (size_t n, size_t size), (n, size))
WRAP(int, -1, open64, (const char* path, int how, mode_t mode), (Take(path), how, mode))
WRAP(FILE*, nullptr, fopen64, (const char* path, const char* how), (path, how))
WRAP(FILE*, nullptr, fdopen, (int fd, const char* how), (fd, how))
WRAP(size_t, 0, fread, (void* out, size_t size, size_t n, FILE* f), (out, size, n, f))
WRAP(int, -1, fseek, (FILE * f, long offset, int from), (f, offset, from))
WRAP(long, -1, ftell, (FILE * f), (f))
WRAP(int, -1, fgetpos64, (FILE * f, fpos64_t* position), (f, position))
WRAP(int, -1, fsetpos64, (FILE * f, const fpos64_t* position), (f, position))
WRAP(int, -1, fcntl64, (int fd, int command), (fd, command))
WRAP(int, -1, fstat64, (int fd, struct stat64* status), (fd, status))
WRAP(ssize_t, -1, pread64, (int fd, void* out, size_t n, off64_t at), (fd, out, Part(n), at))
WRAP(ssize_t, -1, pwrite64, (int fd, const void* bytes, size_t n, off64_t at),
     (fd, bytes, Part(n), at))
WRAP(int, -1, fsync, (int fd), (fd))
WRAP(int, -1, ftruncate64, (int fd, off64_t size), (fd, size))
WRAP(int, -1, fchown, (int fd, uid_t user, gid_t group), (fd, user, group))
WRAP(int, -1, fchmod, (int fd, mode_t mode), (fd, mode))
WRAP(int, -1, fsetxattr, (int fd, const char* name, const void* value, size_t n, int how),
     (fd, name, value, n, how))
WRAP(int, -1, flock, (int fd, int how), (fd, how))
WRAP(int, -1, rename, (const char* from, const char* to), (from, to))
WRAP(int, (__real_close(fd), errno = plan.error, -1), close, (int fd), (fd))
}

}  // namespace lumigram::test
