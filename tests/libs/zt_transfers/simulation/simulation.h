#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "sandbox.h"
#include "simulation/scenario.h"
#include "simulation/virtual_client.h"

namespace zt_transfers::test {

// Runs one scenario and looks for what must never happen:
//  - a file that was told completed is not durable, or has other bytes than one of its versions;
//  - a file fails, or still waits an hour after all trouble is over;
//  - a partial file without an owner, or two copies of a file;
//  - bytes that were on the disk before a restart are fetched again;
//  - a server in trouble gets more than a few requests a second; the network's thread spins.
class CSimulation {
 public:
  struct Result {
    std::optional<std::string> violation;
    std::vector<std::string> log;
    std::chrono::seconds lived{0};  // virtual time
    std::size_t completed = 0;      // files
  };

  explicit CSimulation(const Scenario& scenario);
  Result run();

 private:
  struct Group {
    std::int32_t id = -1;
    unsigned paused = 0;
    bool cancelled = false;
  };

  void launch();
  void queueAll();
  FileSpec specOf(const PlannedFile& file);
  std::string folderOf(unsigned group) const;
  void schedule(const Step& step);
  void begin(const Step& step);
  void end(const Step& step);
  void writeBack();
  void relaunch(const Step& step);
  void heal();
  bool isDone(const PlannedFile& file) const;
  bool allDone() const;

  void told(const TransferEvent& event);
  void checkCompleted(const PlannedFile& file);
  void checkFolders();
  void checkEnd();
  bool mayFail(const PlannedFile& file) const;
  bool wanted(const PlannedFile& file) const;
  void violated(const std::string& what);

  const Scenario scenario_;
  CSandbox sandbox_;
  CWorld world_;
  CVirtualServers servers_;
  std::unique_ptr<CVirtualDisk> disk_;
  std::unique_ptr<CVirtualClient> client_;
  std::vector<Group> groups_;
  std::set<unsigned> removed_;  // files
  std::set<unsigned> completed_;
  bool healed_ = false;
  Result result_;
};

// The shortest scenario found that still violates something.
Scenario shrunk(Scenario scenario);

}  // namespace zt_transfers::test
