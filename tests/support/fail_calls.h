// Makes calls of the C library fail. The linker redirects the calls of the library and the tests to
// the wrappers in fail_calls.cc; without a FailCalls object they only forward the call.
#ifndef LUMIGRAM_TESTS_SUPPORT_FAIL_CALLS_H_
#define LUMIGRAM_TESTS_SUPPORT_FAIL_CALLS_H_

#include <errno.h>

#include <functional>

namespace lumigram::test {

// Besides the errors of errno.h:
inline constexpr int kHalf = -1;   // from then on, pread and pwrite transfer half; others succeed
inline constexpr int kTaken = -2;  // open64 finds a file of that name; other calls succeed
// The process ends in the call, as if killed: it becomes a program that exits with 8, or with 9 if
// it has inherited a descriptor of a PNG file.
inline constexpr int kExec = -3;

// All calls whose failure makes a whole read or write fail, at least for some files.
inline constexpr char kAllCalls[] =
    "malloc calloc open64 fopen64 fdopen fread pread64 fseek ftell fgetpos64 fsetpos64 fcntl64 "
    "fstat64 pwrite64 fsync fchown fchmod close rename";

// While in scope, makes the nth of the named calls fail, or all from the nth on. The calls are
// counted together, from 0. "fopen64" also names open64. There is one such object at a time.
class FailCalls {
 public:
  enum Times { kOnce, kFromThenOn };
  FailCalls(const char* calls, int nth, int error, Times times = kOnce);
  ~FailCalls();
  const char* Failed() const;  // the first call that failed; null: there were fewer calls
  bool Happened() const { return Failed() != nullptr; }
};

// Runs a function in a child process. Returns its exit status, or minus the signal that ended it.
int InChild(const std::function<int()>& run);

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_FAIL_CALLS_H_
