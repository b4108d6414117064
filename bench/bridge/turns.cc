#include "turns.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace bench {
namespace {

constexpr int kTurns = 25;

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

Comparison interleave(const std::function<double()>& framework,
                      const std::function<double()>& bare) {
  framework();  // warms both up
  bare();
  std::vector<double> ours;
  std::vector<double> theirs;
  std::vector<double> ratios;
  for (int turn = 0; turn < kTurns; ++turn) {
    if (turn % 2 == 0) {
      ours.push_back(framework());
      theirs.push_back(bare());
    } else {
      theirs.push_back(bare());
      ours.push_back(framework());
    }
    ratios.push_back(ours.back() / theirs.back());
  }
  return {median(ours), median(theirs), median(ratios)};
}

void Comparison::print(const char* what) const {
  std::printf("%-32s %10.0f a second, bare %8.0f, ratio %.2f\n", what, framework, bare, ratio);
}

}  // namespace bench
