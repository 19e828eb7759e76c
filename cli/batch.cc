#include "cli/batch.h"

#include <signal.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>
#include <numeric>
#include <thread>
#include <utility>

#include "core/base/status.h"

namespace lumigram::cli {
namespace {

// ---- interruption -------------------------------------------------------------------------------

std::atomic<int> interruption{0};
std::atomic<time_t> interruptedAt{0};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<time_t>::is_always_lock_free,
              "a signal handler stores into them");

// Stores the first signal. A signal that arrives over a second later has its default effect. An
// earlier one is ignored, because one keystroke or one timeout(1) may send two.
extern "C" void NoteInterruption(int number) {
  const time_t now = time(nullptr);
  if (interruption == 0) {
    interruptedAt = now;
    interruption = number;
  } else if (now - interruptedAt > 1) {
    signal(number, SIG_DFL);
    raise(number);
  }
}

class InterruptionScope {
 public:
  InterruptionScope() {
    struct sigaction action = {};
    action.sa_handler = NoteInterruption;
    action.sa_flags = SA_RESTART;
    for (size_t i = 0; i < std::size(kSignals); ++i) {
      sigaction(kSignals[i], nullptr, &old_[i]);
      if (old_[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
    }
  }
  ~InterruptionScope() {
    for (size_t i = 0; i < std::size(kSignals); ++i) sigaction(kSignals[i], &old_[i], nullptr);
  }
  InterruptionScope(const InterruptionScope&) = delete;
  InterruptionScope& operator=(const InterruptionScope&) = delete;

 private:
  static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
  struct sigaction old_[std::size(kSignals)];
};

// ---- the work -----------------------------------------------------------------------------------

class Batch {
 public:
  Batch(const std::vector<Target>& targets, const std::function<Outcome(const Target&)>& function,
        Console* console, const char* separator)
      : targets_(targets),
        function_(function),
        console_(*console),
        separator_(separator),
        results_(targets.size()) {
    tally_.total = targets.size();
  }

  Tally Run() {
    const InterruptionScope scope;
    std::vector<std::jthread> threads;
    const size_t cores = std::max(1u, std::thread::hardware_concurrency());
    for (size_t i = 0; i < std::min(cores, targets_.size()); ++i) {
      threads.emplace_back([this] { Work(); });
    }
    while (printed_ < targets_.size() && interruption == 0) AwaitNext();
    threads.clear();  // waits for the pictures that are in work
    while (PrintNext()) continue;
    console_.ClearProgress();
    tally_.signal = printed_ < targets_.size() ? interruption.load() : 0;
    return tally_;
  }

 private:
  struct Result {
    Outcome outcome;
    std::optional<Failure> failure;
  };

  void Work() {
    while (interruption == 0) {
      const size_t i = next_++;
      if (i >= targets_.size()) return;
      Result result = RunOne(targets_[i]);
      const std::lock_guard lock(mutex_);
      results_[i] = std::move(result);
      ready_.notify_one();
    }
  }

  Result RunOne(const Target& target) {
    const Outcome failed = {Outcome::kFailed, ""};
    if (target.failure) return {failed, target.failure};
    try {
      return {function_(target), std::nullopt};
    } catch (const Failure& failure) {
      return {failed, failure};
    } catch (const std::bad_alloc&) {
      return {failed, Failure(kNoRoom, "no memory")};
    }
  }

  void AwaitNext() {
    using std::chrono::steady_clock;
    std::unique_lock lock(mutex_);
    ready_.wait_for(lock, std::chrono::milliseconds(100),
                    [this] { return results_[printed_].has_value(); });
    lock.unlock();
    while (PrintNext()) {
      if (steady_clock::now() >= nextProgress_) break;
    }
    if (steady_clock::now() < nextProgress_) return;
    console_.Progress(printed_, targets_.size());
    nextProgress_ = steady_clock::now() + std::chrono::milliseconds(100);
  }

  // Prints the next result. False when it is not available yet, or there are no more.
  bool PrintNext() {
    std::unique_lock lock(mutex_);
    if (printed_ == targets_.size() || !results_[printed_]) return false;
    const Result result = *std::exchange(results_[printed_], std::nullopt);
    lock.unlock();
    if (result.failure) console_.Fail(targets_[printed_].path, *result.failure);
    if (!result.outcome.output.empty()) {
      console_.Print(anyOutput_ ? separator_ : "");
      console_.Print(result.outcome.output);
      anyOutput_ = true;
    }
    ++tally_.counts[result.outcome.type];
    ++printed_;
    return true;
  }

  const std::vector<Target>& targets_;
  const std::function<Outcome(const Target&)>& function_;
  Console& console_;
  const char* const separator_;
  bool anyOutput_ = false;
  std::chrono::steady_clock::time_point nextProgress_ =
      std::chrono::steady_clock::now() + std::chrono::seconds(1);
  Tally tally_;
  size_t printed_ = 0;
  std::atomic<size_t> next_{0};
  std::mutex mutex_;  // of results_
  std::condition_variable ready_;
  std::vector<std::optional<Result>> results_;
};

}  // namespace

size_t Tally::Finished() const { return std::accumulate(counts, std::end(counts), size_t{0}); }

Tally RunAll(const std::vector<Target>& targets,
             const std::function<Outcome(const Target&)>& function, Console* console,
             const char* separator) {
  return Batch(targets, function, console, separator).Run();
}

}  // namespace lumigram::cli
