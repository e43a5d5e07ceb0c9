// Timing.h: how a piece of work is timed, and how its answer is checked.
#pragma once

#include <benchmark/benchmark.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace bench {

/// A piece of work: `body` is timed, `before` and `after` are not. `after` answers an error, or an empty text.
struct TWork {
  std::function<void()> before = [] {};
  std::function<void()> body;
  std::function<std::string()> after = [] { return std::string(); };
};

inline double ResidentMiB() {
  long total = 0;
  long resident = 0;
  if (std::FILE* const file = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(file, "%ld %ld", &total, &resident) != 2) resident = 0;
    std::fclose(file);
  }
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

/// Milliseconds that this thread has worked; other programs on the machine don't count.
inline double WorkedMs() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1000 + static_cast<double>(now.tv_nsec) / 1e6;
}

inline double Median(std::vector<double>& times) {
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

/// Runs the work once unmeasured and then once for each iteration; reports the median as the time, least and greatest
/// as counters, in milliseconds, the median of what the thread itself worked, and the resident memory that the body of
/// the unmeasured run added. A wrong answer is an error of the benchmark.
inline void RunWork(benchmark::State& state, const TWork& work) {
  work.before();
  const double resident = ResidentMiB();
  work.body();
  state.counters["added_MiB"] = ResidentMiB() - resident;
  std::string error = work.after();
  std::vector<double> times, worked;
  for (auto _ : state) {
    work.before();
    const double workedBefore = WorkedMs();
    const auto start = std::chrono::steady_clock::now();
    work.body();
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    worked.push_back(WorkedMs() - workedBefore);
    error = work.after();
    if (!error.empty()) return state.SkipWithError(error.c_str());
    state.SetIterationTime(elapsed.count());
    times.push_back(elapsed.count() * 1000);
  }
  state.counters["median_ms"] = Median(times);
  state.counters["worked_ms"] = Median(worked);
  state.counters["min_ms"] = times.front();
  state.counters["max_ms"] = times.back();
}

inline constexpr int kRuns = 7;

/// Registers work that is made afresh for its benchmark alone. `make` answers a TWork.
template <class Make>
void Register(const std::string& name, Make make) {
  benchmark::RegisterBenchmark(name.c_str(), [make](benchmark::State& state) { RunWork(state, make()); })
      ->Iterations(kRuns)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}

inline std::string Differs(const char* what, double expected, double actual) {
  return std::string(what) + ": " + std::to_string(actual) + " instead of " + std::to_string(expected);
}

}  // namespace bench
