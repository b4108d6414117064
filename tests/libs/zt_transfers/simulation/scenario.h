#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "simulation/virtual_disk.h"
#include "simulation/virtual_servers.h"

namespace zt_transfers::test {

// A file of a scenario, to be downloaded or uploaded.
struct PlannedFile {
  unsigned number = 0;
  unsigned group = 0;
  unsigned origin = 0;
  OfferedFile offered{};
  bool sizeTold = true;  // by the page, with its digest
};

// Something that happens; whatever lasts is over after `lasts`.
struct Step {
  enum class Kind {
    kOrigin,  // `what`: OriginTrouble of `whom`
    kDisk,    // `what`: DiskTrouble
    kPause,   // group `whom`
    kCancel,
    kDequeue,  // file `whom`
    kChange,   // file `whom` gets another version on its server
    kThrottle,
    kClock,  // the machine's clock is wrong by `what` hours
    // The next three with `what` != 0: meanwhile the disk gives its files other numbers.
    kRestart,
    kKill,
    kPowerCut,
  };

  std::chrono::seconds at{0};
  std::chrono::seconds lasts{0};
  Kind kind = Kind::kOrigin;
  unsigned whom = 0;
  int what = 0;
};

struct Scenario {
  std::uint64_t seed = 0;
  bool uploads = false;
  unsigned concurrent = 1;
  unsigned retries = 5;
  std::vector<PlannedFile> files;
  std::vector<Step> steps;

  bool has(Step::Kind kind) const;
};

Scenario scenarioOf(std::uint64_t seed);
// A script that a person can read.
std::string textOf(const Scenario& scenario);

}  // namespace zt_transfers::test
