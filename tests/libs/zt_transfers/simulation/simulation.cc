#include "simulation/simulation.h"

#include <algorithm>
#include <filesystem>
#include <utility>
#include <variant>

namespace zt_transfers::test {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::hours kTroubles{3};          // all is over by then
constexpr std::chrono::hours kPatience{1};          // then everything must be done within this time
constexpr std::chrono::minutes kCleanup{90};        // what is left behind is gone
constexpr std::chrono::seconds kWriteBack{30};      // how long the system waits with it
constexpr std::uint64_t kSpins = 100'000;           // events without any time passing
constexpr std::size_t kMaxInTenSeconds = 80;        // requests of a troubled origin
constexpr std::uint64_t kSplitFrom = 64ULL * 1024;  // bytes
constexpr std::uint64_t kPartSize = 32ULL * 1024;

fs::path memory() {
  return fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
}

std::string nameOf(unsigned number) {
  return "f" + std::to_string(number);
}

bool isPartial(const std::string& name) {
  return name.front() == '.';
}

}  // namespace

CSimulation::CSimulation(const Scenario& scenario)
    : scenario_(scenario), sandbox_(memory()), world_(scenario.seed), servers_(world_) {
  fs::create_directory(sandbox_.folder() / "disk");
  for (const PlannedFile& file : scenario_.files) {
    groups_.resize(std::max<std::size_t>(groups_.size(), file.group + 1));
    fs::create_directory(folderOf(file.group));
    servers_.offered()[file.number] = file.offered;
    if (scenario_.uploads) {
      sandbox_.file(nameOf(file.number),
                    CVirtualServers::contentOf(file.number, 0, file.offered.size));
    }
  }
  disk_ = std::make_unique<CVirtualDisk>(sandbox_.folder() / "disk");
}

std::string CSimulation::folderOf(unsigned group) const {
  return sandbox_.folder() / "disk" / ("g" + std::to_string(group));
}

void CSimulation::launch() {
  client_ = std::make_unique<CVirtualClient>(
      world_, servers_, *disk_,
      CVirtualClient::Options{
          .uploads = scenario_.uploads,
          .settings = {.maxConcurrent = scenario_.concurrent,
                       .maxRetries = scenario_.retries,
                       .verify = true,
                       .proxy = "",
                       .parts = {.from = kSplitFrom,
                                 .size = kPartSize,
                                 .requests = scenario_.concurrent}},
          .database = sandbox_.folder() / "queue.db",
          .told = [this](const TransferEvent& event) { told(event); },
          .log =
              [this](const std::string& line) {
                const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(
                    world_.now().time_since_epoch() - std::chrono::hours(1));
                result_.log.push_back(std::to_string(time.count()) + " ms " + line);
              }});
}

FileSpec CSimulation::specOf(const PlannedFile& file) {
  FileSpec spec;
  spec.fileId = nameOf(file.number);
  spec.url = "http://o" + std::to_string(file.origin) + (scenario_.uploads ? "/u/" : "/d/") +
             std::to_string(file.number);
  if (scenario_.uploads) {
    spec.location = "file://" + (sandbox_.folder() / nameOf(file.number)).string();
    return spec;
  }
  spec.location = nameOf(file.number);
  if (file.sizeTold) {
    spec.size = file.offered.size;
    spec.contentMd5 = md5Of(CVirtualServers::contentOf(file.number, 0, file.offered.size));
  }
  return spec;
}

void CSimulation::queueAll() {
  for (unsigned number = 0; number < groups_.size(); ++number) {
    GroupIdentity identity;
    identity.bucketId = std::to_string(number);
    identity.bucketType = "message";
    identity.token = "token";
    const std::string folder = folderOf(number);
    identity.folder = std::wstring(folder.begin(), folder.end());
    groups_[number].id = client_->engine().createGroup(identity);
  }
  for (const PlannedFile& file : scenario_.files) {
    client_->engine().queueFiles(groups_[file.group].id, {specOf(file)});
  }
  client_->write();
}

void CSimulation::schedule(const Step& step) {
  world_.after(step.at, [this, step] { begin(step); });
  world_.after(step.at + step.lasts, [this, step] { end(step); });
}

void CSimulation::begin(const Step& step) {
  using Kind = Step::Kind;
  switch (step.kind) {
    case Kind::kOrigin:
      servers_.setTrouble(step.whom, static_cast<OriginTrouble>(step.what));
      break;
    case Kind::kDisk:
      disk_->setTrouble(static_cast<DiskTrouble>(step.what));
      break;
    case Kind::kPause:
      if (step.whom < groups_.size() && groups_[step.whom].paused++ == 0) {
        client_->engine().pauseGroup(groups_[step.whom].id);
        client_->write();
      }
      break;
    case Kind::kCancel:
      if (step.whom < groups_.size()) {
        groups_[step.whom].cancelled = true;
        client_->engine().cancelGroup(groups_[step.whom].id);
        client_->write();
      }
      break;
    case Kind::kDequeue:
      for (const PlannedFile& file : scenario_.files) {
        if (file.number == step.whom) {
          removed_.insert(file.number);
          client_->engine().dequeueFiles(groups_[file.group].id, {nameOf(file.number)});
          client_->write();
        }
      }
      break;
    case Kind::kChange:
      ++servers_.offered()[step.whom].version;
      break;
    case Kind::kThrottle:
      client_->setThrottle(20'000);
      break;
    case Kind::kClock:
      world_.setWallClock(std::int64_t{step.what} * 3600);
      break;
    case Kind::kRestart:
      client_->shutdown();
      [[fallthrough]];
    case Kind::kKill:
    case Kind::kPowerCut:
      relaunch(step);
      break;
  }
}

void CSimulation::end(const Step& step) {
  using Kind = Step::Kind;
  switch (step.kind) {
    case Kind::kOrigin:
      servers_.setTrouble(step.whom, OriginTrouble::kNone);
      break;
    case Kind::kDisk:
      disk_->setTrouble(DiskTrouble::kNone);
      break;
    case Kind::kPause:
      if (step.whom < groups_.size() && --groups_[step.whom].paused == 0) {
        client_->engine().resumeGroup(groups_[step.whom].id);
        client_->write();
      }
      break;
    case Kind::kThrottle:
      client_->setThrottle(0);
      break;
    case Kind::kClock:
      world_.setWallClock(0);
      break;
    default:
      break;
  }
}

void CSimulation::writeBack() {
  disk_->writeBack();
  world_.after(kWriteBack, [this] { writeBack(); });
}

void CSimulation::relaunch(const Step& step) {
  client_.reset();
  if (step.kind == Step::Kind::kPowerCut) {
    disk_->cutPower();
    checkFolders();
  }
  if (step.what != 0) {
    disk_->renumber();
  }
  launch();
}

CSimulation::Result CSimulation::run() {
  const TimePoint begun = world_.now();
  launch();
  queueAll();
  for (const Step& step : scenario_.steps) {
    schedule(step);
  }
  world_.after(kTroubles, [this] { heal(); });
  writeBack();
  const TimePoint limit = begun + kTroubles + kPatience;
  while (!result_.violation && !(healed_ && allDone()) && world_.step(limit)) {
    if (world_.spins() > kSpins) {
      violated("the network's thread spins");
    }
  }
  if (!result_.violation) {
    checkEnd();
  }
  result_.lived = std::chrono::duration_cast<std::chrono::seconds>(world_.now() - begun);
  result_.completed = completed_.size();
  client_.reset();
  return std::move(result_);
}

// What failed for reasons that may be its own gets its turn again, as by the user's retry.
void CSimulation::heal() {
  healed_ = true;
  servers_.heal();
  disk_->setTrouble(DiskTrouble::kNone);
  for (const PlannedFile& file : scenario_.files) {
    const auto group = client_->engine().group(groups_[file.group].id);
    if (group && group->state == kGroupErrored && mayFail(file)) {
      client_->engine().resumeGroup(groups_[file.group].id);
    }
  }
}

bool CSimulation::wanted(const PlannedFile& file) const {
  return !groups_[file.group].cancelled && removed_.count(file.number) == 0;
}

// A file that completed just before the process was killed is not told again, but its group's state
// says so.
bool CSimulation::isDone(const PlannedFile& file) const {
  if (completed_.count(file.number) != 0) {
    return true;
  }
  const auto group = client_->engine().group(groups_[file.group].id);
  return group && group->state == kGroupCompleted;
}

bool CSimulation::allDone() const {
  return std::all_of(scenario_.files.begin(), scenario_.files.end(),
                     [&](const PlannedFile& file) { return !wanted(file) || isDone(file); });
}

// The file itself may be to blame: its connections break, or its server cannot serve it, and nobody
// knows whether it could serve others.
bool CSimulation::mayFail(const PlannedFile& file) const {
  return std::any_of(scenario_.steps.begin(), scenario_.steps.end(), [&](const Step& step) {
    const auto trouble = static_cast<OriginTrouble>(step.what);
    return (step.kind == Step::Kind::kChange && step.whom == file.number) ||
           (step.kind == Step::Kind::kOrigin && step.whom == file.origin &&
            (trouble == OriginTrouble::kError || trouble == OriginTrouble::kEmpty ||
             trouble == OriginTrouble::kCut || trouble == OriginTrouble::kSilent));
  });
}

void CSimulation::told(const TransferEvent& event) {
  const auto* state = std::get_if<FileState>(&event);
  if (state == nullptr) {
    return;
  }
  const auto number = static_cast<unsigned>(std::stoul(state->fileId.substr(1)));
  const auto file = std::find_if(scenario_.files.begin(), scenario_.files.end(),
                                 [&](const auto& one) { return one.number == number; });
  if (state->state == kFileCompleted) {
    completed_.insert(number);
    checkCompleted(*file);
  } else if (state->state == kFileErrored && !mayFail(*file)) {
    violated(nameOf(number) + " failed, which was not its own fault");
  }
}

void CSimulation::checkCompleted(const PlannedFile& file) {
  if (scenario_.uploads) {
    const auto stored = servers_.stored().find(file.number);
    if (stored == servers_.stored().end() || !servers_.isVersionOf(file.number, stored->second)) {
      violated(nameOf(file.number) + " was told completed; the server has something else");
    }
    return;
  }
  const auto files = disk_->durableFiles();
  const auto found = files.find("g" + std::to_string(file.group) + "/" + nameOf(file.number));
  if (found == files.end()) {
    violated(nameOf(file.number) + " was told completed; a power cut would lose it");
  } else if (!servers_.isVersionOf(file.number, found->second)) {
    violated(nameOf(file.number) + " was told completed; a power cut would leave other bytes");
  }
}

// Whatever has its final name is right, and everything that was told completed is there.
void CSimulation::checkFolders() {
  for (const auto& [path, content] : disk_->durableFiles()) {
    const std::string name = path.substr(path.find('/') + 1);
    if (!isPartial(name) &&
        !servers_.isVersionOf(static_cast<unsigned>(std::stoul(name.substr(1))), content)) {
      violated(name + " has its final name and wrong bytes");
    }
  }
  for (const PlannedFile& file : scenario_.files) {
    if (!scenario_.uploads && completed_.count(file.number) != 0) {
      checkCompleted(file);
    }
  }
}

void CSimulation::checkEnd() {
  for (const PlannedFile& file : scenario_.files) {
    if (wanted(file) && !isDone(file)) {
      violated(nameOf(file.number) + " is not done an hour after all trouble was over");
      return;
    }
    if (wanted(file)) {
      completed_.insert(file.number);
    }
  }
  const TimePoint limit = world_.now() + kCleanup;
  while (world_.step(limit)) {
  }
  checkFolders();
  for (const auto& entry : fs::recursive_directory_iterator(sandbox_.folder() / "disk")) {
    const std::string name = entry.path().filename();
    if (entry.is_regular_file() && isPartial(name)) {
      violated(name + " was left behind");
    } else if (name.find('(') != std::string::npos) {
      violated(name + " was fetched twice");
    }
  }
  for (const unsigned number : servers_.begunAgain()) {
    violated(nameOf(number) + " was begun again, though bytes of it were on the disk");
  }
  if (servers_.busiestTenSeconds() > kMaxInTenSeconds) {
    violated("a server in trouble got " + std::to_string(servers_.busiestTenSeconds()) +
             " requests in ten seconds");
  }
}

void CSimulation::violated(const std::string& what) {
  if (!result_.violation) {
    result_.violation = what;
  }
}

Scenario shrunk(Scenario scenario) {
  const auto fails = [](const Scenario& shorter) {
    return CSimulation(shorter).run().violation.has_value();
  };
  const auto shorten = [&](auto member) {
    for (std::size_t at = (scenario.*member).size(); at-- > 0;) {
      Scenario shorter = scenario;
      (shorter.*member).erase((shorter.*member).begin() + static_cast<std::ptrdiff_t>(at));
      if (!shorter.files.empty() && fails(shorter)) {
        scenario = std::move(shorter);
      }
    }
  };
  for (std::size_t size = 0; size != scenario.steps.size() + scenario.files.size();) {
    size = scenario.steps.size() + scenario.files.size();
    shorten(&Scenario::steps);
    shorten(&Scenario::files);
  }
  return scenario;
}

}  // namespace zt_transfers::test
