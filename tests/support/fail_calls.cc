#include "tests/support/fail_calls.h"

#include <errno.h>
#include <signal.h>
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
} plan;

bool Fails(const char* call) {
  if (plan.calls == nullptr || strstr(plan.calls, call) == nullptr) return false;
  const int index = plan.made++;
  if (index < plan.nth || (index > plan.nth && !plan.fromThenOn)) return false;
  if (plan.error == kKill) kill(getpid(), SIGKILL);
  errno = plan.error;
  return plan.error != kHalf;
}

}  // namespace

FailCalls::FailCalls(const char* calls, int nth, int error, Times times) {
  plan = {calls, nth, error, times == kFromThenOn, 0};
}
FailCalls::~FailCalls() { plan = {}; }
bool FailCalls::Happened() const { return plan.made > plan.nth; }

int InChild(const std::function<int()>& run) {
  const pid_t child = fork();
  if (child == 0) _exit(run());
  int status = 0;
  waitpid(child, &status, 0);
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

// The names are those that calls have where file offsets are asked to have 64 bits.
extern "C" {
#define WRAP(type, failure, name, parameters, arguments) \
  type __real_##name parameters;                         \
  type __wrap_##name parameters { return Fails(#name) ? failure : __real_##name arguments; }
void* __real_malloc(size_t n);
void* __wrap_malloc(size_t n) {
  void* const block = Fails("malloc") ? nullptr : __real_malloc(n);
  return block == nullptr ? nullptr : memset(block, 0xA5, n);  // as old as any: nothing is cleared
}
WRAP(void*, nullptr, calloc, (size_t n, size_t size), (n, size))
WRAP(int, -1, open64, (const char* path, int how, mode_t mode), (path, how, mode))
WRAP(FILE*, nullptr, fopen64, (const char* path, const char* how), (path, how))
WRAP(FILE*, nullptr, fdopen, (int fd, const char* how), (fd, how))
WRAP(size_t, 0, fread, (void* out, size_t size, size_t n, FILE* f), (out, size, n, f))
WRAP(int, -1, fseek, (FILE * f, long offset, int from), (f, offset, from))
WRAP(long, -1, ftell, (FILE * f), (f))
WRAP(int, -1, fgetpos64, (FILE * f, fpos64_t* position), (f, position))
WRAP(int, -1, fsetpos64, (FILE * f, const fpos64_t* position), (f, position))
WRAP(int, -1, fcntl64, (int fd, int command), (fd, command))
WRAP(int, -1, fstat64, (int fd, struct stat64* status), (fd, status))
WRAP(ssize_t, -1, pread64, (int fd, void* out, size_t n, off64_t at), (fd, out, n, at))
WRAP(ssize_t, -1, pwrite64, (int fd, const void* bytes, size_t n, off64_t at),
     (fd, bytes, plan.error == kHalf && plan.made == plan.nth + 1 ? (n + 1) / 2 : n, at))
WRAP(int, -1, fsync, (int fd), (fd))
WRAP(int, -1, ftruncate64, (int fd, off64_t size), (fd, size))
WRAP(int, -1, fchown, (int fd, uid_t user, gid_t group), (fd, user, group))
WRAP(int, -1, fchmod, (int fd, mode_t mode), (fd, mode))
WRAP(int, -1, fsetxattr, (int fd, const char* name, const void* value, size_t n, int how),
     (fd, name, value, n, how))
WRAP(int, -1, rename, (const char* from, const char* to), (from, to))
WRAP(int, (__real_close(fd), errno = plan.error, -1), close, (int fd), (fd))
}

}  // namespace lumigram::test
