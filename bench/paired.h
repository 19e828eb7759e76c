// Measures work and its yardstick in turn, in one process, so that other load on the machine
// affects both.
#ifndef LUMIGRAM_BENCH_PAIRED_H_
#define LUMIGRAM_BENCH_PAIRED_H_

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace lumigram::bench {

inline double Median(std::vector<double> values) {
  const auto middle = values.begin() + std::ssize(values) / 2;
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

template <typename Work>
double SecondsOver(const std::vector<std::string>& paths, Work work) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  for (const std::string& path : paths) work(path);
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// One round runs the yardstick over all paths, and then the work over all paths. Counters: "ratio"
// is the median of the rounds' ratios; "us" and "yardstick_us" are medians for one picture.
template <typename Work, typename Yardstick>
void MeasurePaired(benchmark::State& state, const std::vector<std::string>& paths, Work work,
                   Yardstick yardstick) {
  std::vector<double> ratios, works, yardsticks;
  for (auto _ : state) {
    yardsticks.push_back(SecondsOver(paths, yardstick));
    works.push_back(SecondsOver(paths, work));
    ratios.push_back(works.back() / yardsticks.back());
    state.SetIterationTime(works.back());
  }
  const double microseconds = 1e6 / static_cast<double>(paths.size());
  state.counters["pictures"] = static_cast<double>(paths.size());
  state.counters["us"] = Median(works) * microseconds;
  state.counters["yardstick_us"] = Median(yardsticks) * microseconds;
  state.counters["ratio"] = Median(ratios);
}

}  // namespace lumigram::bench

#endif  // LUMIGRAM_BENCH_PAIRED_H_
