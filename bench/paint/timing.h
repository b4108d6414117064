// Times of repeated work.
#pragma once

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace bench {

// In microseconds.
class Stopwatch {
 public:
  double passed() const {
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start_)
        .count();
  }

 private:
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// The processor time of this process, all threads, in microseconds.
inline double processorTime() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto micros = [](const timeval& time) { return time.tv_sec * 1e6 + time.tv_usec; };
  return micros(usage.ru_utime) + micros(usage.ru_stime);
}

// The value below which this part of the values lies; they are sorted by it.
inline double percentile(std::vector<double>& values, double part) {
  if (values.empty()) {
    return 0;
  }
  std::sort(values.begin(), values.end());
  return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1))];
}

inline double median(std::vector<double>& values) {
  return percentile(values, 0.5);
}

}  // namespace bench
