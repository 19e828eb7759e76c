#include "tools/work.h"

#include <errno.h>
#include <signal.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <new>
#include <numeric>
#include <set>
#include <thread>
#include <utility>

#include "core/base/status.h"

namespace lumigram::tool {
namespace {

// ---- which pictures -----------------------------------------------------------------------------

// What the replacing of a picture names the file that is to take its place.
constexpr char kTemporaryPrefix[] = ".lumigram-";

class TargetFinder {
 public:
  explicit TargetFinder(bool recursive) : recursive_(recursive) {}

  void Add(const std::string& path, size_t origin) {
    origin_ = origin;
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return Refuse(path, strerror(errno));
    if (!S_ISDIR(status.st_mode)) return AddFile(path, status);
    if (!recursive_) return Refuse(path, "a folder; -r takes the pictures in it");
    AddFolder(path);
  }

  std::vector<Target> Take() { return std::move(targets_); }

 private:
  void Refuse(const std::string& path, const std::string& reason) {
    targets_.push_back({path, origin_, Failure(kCannotOpen, reason)});
  }

  void AddFile(const std::string& path, const struct stat& status) {
    if (!seen_.insert({status.st_dev, status.st_ino}).second) return;
    const bool isTemporary = path.substr(path.rfind('/') + 1).starts_with(kTemporaryPrefix);
    if (isTemporary) return Refuse(path, "a temporary file of a picture that is being replaced");
    targets_.push_back({path, origin_, std::nullopt});
  }

  // Links to folders are not followed: a walk ends.
  void AddFolder(const std::string& folder) {
    std::error_code error;
    std::vector<std::filesystem::directory_entry> entries;
    for (auto entry = std::filesystem::directory_iterator(folder, error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
      entries.push_back(*entry);
    }
    if (error) Refuse(folder, error.message());
    std::sort(entries.begin(), entries.end());
    for (const auto& entry : entries) {
      const std::string path = entry.path();
      struct stat status;
      FileType type;
      if (entry.is_directory(error) && !entry.is_symlink(error)) {
        AddFolder(path);
      } else if (GetFileType(path.c_str(), &type) == kOk &&
                 !entry.path().filename().string().starts_with(kTemporaryPrefix) &&
                 stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        AddFile(path, status);
      }
    }
  }

  const bool recursive_;
  size_t origin_ = 0;
  std::vector<Target> targets_;
  std::set<std::pair<dev_t, ino_t>> seen_;
};

// ---- interruption -------------------------------------------------------------------------------

std::atomic<int> interruption{0};
std::atomic<time_t> interruptedAt{0};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<time_t>::is_always_lock_free,
              "a signal handler stores into them");

// The first signal is noted; one that comes seconds later does what it always does. (One keystroke
// or one timeout(1) may well send two.)
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
  Batch(const std::vector<Target>& targets, const std::function<Done(const Target&)>& function,
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
    threads.clear();  // waits for what is in work
    while (PrintNext()) continue;
    console_.ClearProgress();
    tally_.signal = printed_ < targets_.size() ? interruption.load() : 0;
    return tally_;
  }

 private:
  struct Result {
    Done done;
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
    const Done failed = {Done::kFailed, ""};
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

  // Prints the next result, if it is there.
  bool PrintNext() {
    std::unique_lock lock(mutex_);
    if (printed_ == targets_.size() || !results_[printed_]) return false;
    const Result result = *std::exchange(results_[printed_], std::nullopt);
    lock.unlock();
    if (result.failure) console_.Fail(targets_[printed_].path, *result.failure);
    if (!result.done.output.empty()) {
      console_.Print(anyOutput_ ? separator_ : "");
      console_.Print(result.done.output);
      anyOutput_ = true;
    }
    ++tally_.counts[result.done.kind];
    ++printed_;
    return true;
  }

  const std::vector<Target>& targets_;
  const std::function<Done(const Target&)>& function_;
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

std::vector<Target> FindTargets(const std::vector<std::string>& paths, bool recursive) {
  TargetFinder finder(recursive);
  for (size_t i = 0; i < paths.size(); ++i) finder.Add(paths[i], i);
  return finder.Take();
}

size_t Tally::Finished() const { return std::accumulate(counts, std::end(counts), size_t{0}); }

Tally RunAll(const std::vector<Target>& targets, const std::function<Done(const Target&)>& function,
             Console* console, const char* separator) {
  return Batch(targets, function, console, separator).Run();
}

}  // namespace lumigram::tool
