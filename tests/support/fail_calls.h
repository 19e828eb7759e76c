// Calls of the C library made to fail. The linker hands what the library and the tests call to the
// wrappers in fail_calls.cc, where their names stand; without a FailCalls they pass everything on.
#ifndef LUMIGRAM_TESTS_SUPPORT_FAIL_CALLS_H_
#define LUMIGRAM_TESTS_SUPPORT_FAIL_CALLS_H_

#include <errno.h>

#include <functional>

namespace lumigram::test {

// Besides the errors of errno.h:
inline constexpr int kHalf =
    -1;  // from then on reads and writes by position take half; other calls pass
inline constexpr int kTaken = -2;  // an open64 finds a file of that name; other calls pass
// The process ends there, as if killed, by becoming a program that exits with 8, or with 9 if it
// has inherited a descriptor of a PNG file.
inline constexpr int kExec = -3;

// All calls of a whole read or write that can fail and that it cannot do without.
inline constexpr char kAllCalls[] =
    "malloc calloc open64 fopen64 fdopen fread pread64 fseek ftell fgetpos64 fsetpos64 fcntl64 "
    "fstat64 pwrite64 fsync fchown fchmod close rename";

// While in scope, of the calls named (open64 also by fopen64), counted together from 0, the nth
// fails with the error, or all from the nth on. One at a time.
class FailCalls {
 public:
  enum Times { kOnce, kFromThenOn };
  FailCalls(const char* calls, int nth, int error, Times times = kOnce);
  ~FailCalls();
  const char* Failed() const;  // the first call that failed; null: fewer calls were made
  bool Happened() const { return Failed() != nullptr; }
};

// Runs in a child process; its exit status, or minus the signal that ended it.
int InChild(const std::function<int()>& run);

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_FAIL_CALLS_H_
