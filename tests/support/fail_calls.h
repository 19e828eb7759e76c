// Calls of the C library made to fail. The linker hands what the library and the tests call to the
// wrappers in fail_calls.cc; without a FailCalls they pass everything on.
#ifndef LUMIGRAM_TESTS_SUPPORT_FAIL_CALLS_H_
#define LUMIGRAM_TESTS_SUPPORT_FAIL_CALLS_H_

#include <functional>

namespace lumigram::test {

enum Calls : unsigned {
  kMallocCalls = 1,  // and calloc
  kOpenCalls = 2,    // and fopen
  kReadCalls = 4,
  kWriteCalls = 8,
  kSyncCalls = 16,
  kTruncateCalls = 32,
  kOwnerCalls = 64,
  kModeCalls = 128,
  kAttributeCalls = 256,  // setting and removing
  kCloseCalls = 512,      // which close before they fail
  kRenameCalls = 1024,
  kUnlinkCalls = 2048,
  kAllCalls = 4095
};

// Besides the errors of errno.h:
inline constexpr int kHalf = -1;  // a write takes half of the bytes; other calls pass
inline constexpr int kKill = -2;  // the process is killed instead, by a write in its midst

// While in scope: of the calls of these kinds, counted together from 0, the nth fails with the
// error, or all from the nth on. One at a time.
class FailCalls {
 public:
  enum Times { kOnce, kFromThenOn };
  FailCalls(unsigned calls, int nth, int error, Times times = kOnce);
  ~FailCalls();
  bool Happened() const;  // whether so many calls were made
};

// Runs in a child process; its exit status, or minus the signal that ended it.
int InChild(const std::function<int()>& run);

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_FAIL_CALLS_H_
