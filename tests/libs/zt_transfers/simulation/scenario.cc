#include "simulation/scenario.h"

#include <algorithm>
#include <array>
#include <random>

namespace zt_transfers::test {
namespace {

constexpr unsigned kOrigins = 3;
constexpr unsigned kGroups = 3;
constexpr int kSpan = 3600;  // seconds in which things happen

class CDice {
 public:
  explicit CDice(std::uint64_t seed) : random_(seed) {}
  unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
  bool chance(unsigned percent) { return below(100) < percent; }
  // Short times as often as long ones.
  std::chrono::seconds time(unsigned limit) {
    unsigned seconds = 1;
    while (seconds < limit && chance(80)) {
      seconds *= 2;
    }
    return std::chrono::seconds(below(seconds) + 1);
  }

 private:
  std::mt19937_64 random_;
};

PlannedFile fileOf(CDice& dice, unsigned number, unsigned group) {
  static constexpr std::array<unsigned, 5> kSizes{1, 2'000, 60'000, 200'000, 800'000};
  PlannedFile file;
  file.number = number;
  file.group = group;
  file.origin = dice.chance(75) ? group % kOrigins : dice.below(kOrigins);
  file.offered.size = dice.below(kSizes[dice.below(kSizes.size())]);
  file.offered.ranges = dice.chance(80);
  file.offered.etag = dice.chance(70);
  file.offered.length = dice.chance(90);
  file.sizeTold = !file.offered.length || dice.chance(60);
  return file;
}

Step stepOf(CDice& dice, const Scenario& scenario) {
  using Kind = Step::Kind;
  static constexpr std::array<Kind, 16> kKinds{
      Kind::kOrigin, Kind::kOrigin,  Kind::kOrigin, Kind::kOrigin,  Kind::kDisk,   Kind::kDisk,
      Kind::kPause,  Kind::kPause,   Kind::kCancel, Kind::kDequeue, Kind::kChange, Kind::kThrottle,
      Kind::kClock,  Kind::kRestart, Kind::kKill,   Kind::kPowerCut};
  Step step;
  // Most things happen while bytes move.
  step.at = dice.chance(70) ? dice.time(600) : std::chrono::seconds(dice.below(kSpan));
  step.kind = kKinds[dice.below(kKinds.size())];
  step.lasts = dice.time(1800);
  switch (step.kind) {
    case Kind::kOrigin:
      step.whom = dice.below(kOrigins);
      step.what = 1 + static_cast<int>(dice.below(kOriginTroubles - 1));
      break;
    case Kind::kDisk:
      step.what = 1 + static_cast<int>(dice.below(kDiskTroubles - 1));
      break;
    case Kind::kPause:
    case Kind::kCancel:
      step.whom = dice.below(kGroups);
      break;
    case Kind::kDequeue:
    case Kind::kChange:
      step.whom = dice.below(static_cast<unsigned>(scenario.files.size()));
      break;
    case Kind::kClock:
      step.what = (dice.chance(50) ? 1 : -1) * (dice.chance(50) ? 1 : 365 * 24);
      break;
    case Kind::kRestart:
    case Kind::kKill:
    case Kind::kPowerCut:
      step.what = dice.chance(50) ? 1 : 0;
      break;
    default:
      break;
  }
  return step;
}

std::string textOf(const Step& step) {
  static constexpr std::array<const char*, 11> kNames{
      "origin",         "the disk is",
      "pause group",    "cancel group",
      "remove file",    "another version of",
      "limit the rate", "set the clock wrong by hours",
      "restart",        "kill",
      "cut the power"};
  std::string text = std::to_string(step.at.count()) + " s: ";
  text += kNames[static_cast<std::size_t>(step.kind)];
  text += " " + std::to_string(step.whom);
  switch (step.kind) {
    case Step::Kind::kOrigin:
      text += std::string(" ") + textOf(static_cast<OriginTrouble>(step.what));
      break;
    case Step::Kind::kDisk:
      text += std::string(" ") + textOf(static_cast<DiskTrouble>(step.what));
      break;
    case Step::Kind::kClock:
      text += " " + std::to_string(step.what);
      break;
    case Step::Kind::kRestart:
    case Step::Kind::kKill:
    case Step::Kind::kPowerCut:
      text += step.what != 0 ? " and number the files anew" : "";
      break;
    default:
      break;
  }
  return text + ", for " + std::to_string(step.lasts.count()) + " s\n";
}

}  // namespace

bool Scenario::has(Step::Kind kind) const {
  return std::any_of(steps.begin(), steps.end(),
                     [kind](const Step& step) { return step.kind == kind; });
}

Scenario scenarioOf(std::uint64_t seed) {
  CDice dice(seed);
  Scenario scenario;
  scenario.seed = seed;
  scenario.uploads = dice.chance(35);
  scenario.concurrent = 1 + dice.below(8);
  scenario.retries = dice.below(6);
  for (unsigned group = 0; group < kGroups; ++group) {
    for (unsigned count = dice.below(8); count > 0; --count) {
      scenario.files.push_back(fileOf(dice, static_cast<unsigned>(scenario.files.size()), group));
    }
  }
  if (scenario.files.empty()) {
    scenario.files.push_back(fileOf(dice, 0, 0));
  }
  for (unsigned count = dice.below(9); count > 0; --count) {
    const Step step = stepOf(dice, scenario);
    if (step.kind == Step::Kind::kChange) {
      PlannedFile& file = scenario.files[step.whom];
      if (!file.offered.length) {
        continue;
      }
      file.sizeTold = false;
    }
    scenario.steps.push_back(step);
  }
  std::stable_sort(scenario.steps.begin(), scenario.steps.end(),
                   [](const Step& left, const Step& right) { return left.at < right.at; });
  return scenario;
}

std::string textOf(const Scenario& scenario) {
  std::string text = "seed " + std::to_string(scenario.seed) + ": " +
                     (scenario.uploads ? "uploads" : "downloads") + ", " +
                     std::to_string(scenario.concurrent) + " at a time, " +
                     std::to_string(scenario.retries) + " retries\n";
  for (const PlannedFile& file : scenario.files) {
    text += "file " + std::to_string(file.number) + ", group " + std::to_string(file.group) +
            ", origin " + std::to_string(file.origin) + ", " + std::to_string(file.offered.size) +
            " bytes" + (file.offered.ranges ? "" : ", no ranges") +
            (file.offered.etag ? "" : ", a date only") +
            (file.offered.length ? "" : ", no length") + (file.sizeTold ? "" : ", size not told") +
            "\n";
  }
  for (const Step& step : scenario.steps) {
    text += textOf(step);
  }
  return text;
}

}  // namespace zt_transfers::test
