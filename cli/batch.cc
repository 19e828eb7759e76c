#include "cli/batch.h"

#include <malloc.h>
#include <signal.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <new>
#include <numeric>
#include <stop_token>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

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

// A record has 290 KB. Memory of this size must not go back to the system after each picture: to
// get it again costs more than the picture.
void KeepMemory() {
#ifdef M_TRIM_THRESHOLD
  constexpr int kKept = 8 << 20;
  mallopt(M_TRIM_THRESHOLD, kKept);
  mallopt(M_MMAP_THRESHOLD, kKept);
#endif
}

using Clock = std::chrono::steady_clock;
constexpr Clock::duration kTick = std::chrono::milliseconds(100);

class Batch {
 public:
  Batch(Targets* targets, const std::function<Outcome(const Target&)>& function, Console* console,
        const char* separator)
      : targets_(*targets), function_(function), console_(*console), separator_(separator) {}

  Tally Run() {
    const InterruptionScope scope;
    KeepMemory();
    RunThreads();
    while (PrintNext()) continue;
    console_.ClearProgress();
    if (error_) std::rethrow_exception(error_);
    tally_.total = ended_ ? tally_.Finished() : total_.load();
    if (!ended_) tally_.signal = interruption;
    return tally_;
  }

 private:
  struct Result {
    Outcome outcome;
    std::optional<Failure> failure;
  };

  struct Slot {
    Target target;
    std::optional<Result> result;
  };

  // Ends the threads, even if the main thread cannot go on.
  class Stopper {
   public:
    explicit Stopper(Batch* batch) : batch_(*batch) {}
    ~Stopper() { batch_.Stop(nullptr); }
    Stopper(const Stopper&) = delete;
    Stopper& operator=(const Stopper&) = delete;

   private:
    Batch& batch_;
  };

  void RunThreads() {
    std::vector<std::jthread> threads;
    const Stopper stopper(this);  // before the threads are joined
    try {
      const size_t cores = std::max(1u, std::thread::hardware_concurrency());
      while (threads.size() < cores) threads.emplace_back([this] { Work(); });
    } catch (const std::system_error&) {  // The system has no further threads for us.
    }
    if (threads.empty()) WorkHere();
    while (IsGoingOn()) AwaitNext();
  }

  void Work() {
    try {
      while (Slot* const slot = TakeNext()) Finish(slot, RunOne(slot->target));
    } catch (...) {
      Stop(std::current_exception());
    }
  }

  void WorkHere() {
    while (Slot* const slot = TakeNext()) {
      Finish(slot, RunOne(slot->target));
      AwaitNext();
    }
  }

  // Returns the slot of the next target when there is room for it; null at the end.
  Slot* TakeNext() {
    const std::lock_guard turn(turn_);
    std::unique_lock lock(mutex_);
    room_.wait(lock, [this] { return stopped_ || window_.size() < kWindow; });
    if (stopped_ || ended_ || interruption != 0) return nullptr;
    lock.unlock();
    std::optional<Target> target = targets_.Next();
    lock.lock();
    ended_ = !target;
    return ended_ ? nullptr : &window_.emplace_back(Slot{std::move(*target), std::nullopt});
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

  void Finish(Slot* slot, Result result) {
    const std::lock_guard lock(mutex_);
    slot->result = std::move(result);
    slot->target.changes.reset();  // A result that waits for earlier ones needs only the path.
    ready_.notify_one();
  }

  void Stop(std::exception_ptr error) {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    if (error && !error_) error_ = std::move(error);
    room_.notify_all();
    ready_.notify_one();
  }

  bool IsGoingOn() {
    const std::lock_guard lock(mutex_);
    return interruption == 0 && !stopped_ && !(ended_ && window_.empty());
  }

  void AwaitNext() {
    std::unique_lock lock(mutex_);
    ready_.wait_for(lock, kTick, [this] {
      return stopped_ || (window_.empty() ? ended_ : window_.front().result.has_value());
    });
    lock.unlock();
    while (PrintNext()) {
      if (Clock::now() >= nextTick_) break;
    }
    if (Clock::now() >= nextTick_) Tick();
  }

  // Prints the next result. False when it is not available yet, or there are no more.
  bool PrintNext() {
    std::unique_lock lock(mutex_);
    if (window_.empty() || !window_.front().result) return false;
    const Slot slot = std::move(window_.front());
    window_.pop_front();
    room_.notify_one();
    lock.unlock();
    const Outcome& outcome = slot.result->outcome;
    if (slot.result->failure) console_.Fail(slot.target.path, *slot.result->failure);
    if (!outcome.output.empty()) {
      console_.Print(anyOutput_ ? separator_ : "");
      console_.Print(outcome.output);
      anyOutput_ = true;
    }
    ++tally_.counts[outcome.type];
    return true;
  }

  // Lets readers of the output have what there is, and shows the progress after a second.
  void Tick() {
    nextTick_ = Clock::now() + kTick;
    console_.Flush();
    const std::chrono::duration<double> spent = Clock::now() - start_;
    if (!console_.ShowsProgress() || spent < std::chrono::seconds(1)) return;
    if (!counter_.joinable()) StartCounting();
    console_.Progress(tally_.Finished(), total_, spent.count());
  }

  // Counts the targets for the progress, far ahead of the work.
  void StartCounting() {
    const auto count = [this](const std::stop_token& stop) {
      try {
        const size_t all = targets_.Count(stop);
        if (!stop.stop_requested()) total_ = all;
      } catch (const std::exception&) {  // The progress goes without the total.
      }
    };
    try {
      counter_ = std::jthread(count);
    } catch (const std::system_error&) {
    }
  }

  static constexpr size_t kWindow = 256;  // targets that are begun and not printed

  Targets& targets_;
  const std::function<Outcome(const Target&)>& function_;
  Console& console_;
  const char* const separator_;
  bool anyOutput_ = false;
  const Clock::time_point start_ = Clock::now();
  Clock::time_point nextTick_ = start_ + kTick;
  Tally tally_;
  std::mutex turn_;   // to take the next target
  std::mutex mutex_;  // of the following
  std::condition_variable ready_, room_;
  std::deque<Slot> window_;
  bool ended_ = false;    // all targets have been taken
  bool stopped_ = false;  // no further targets are taken
  std::exception_ptr error_;
  std::atomic<size_t> total_{0};  // 0: not counted yet
  std::jthread counter_;          // the last member: it uses the others
};

}  // namespace

size_t Tally::Finished() const { return std::accumulate(counts, std::end(counts), size_t{0}); }

Tally RunAll(Targets* targets, const std::function<Outcome(const Target&)>& function,
             Console* console, const char* separator) {
  return Batch(targets, function, console, separator).Run();
}

}  // namespace lumigram::cli
