#pragma once

#include <cstdint>
#include <map>
#include <set>

#include "engine/event_queue.h"
#include "engine/transfer_group.h"

namespace zt_transfers {

// Decides which changes become events: changes of state at once, progress at most ten times a
// second for each group. The last progress of a group stays due until it is reported.
//
// Thread: none of its own; the engine guards it.
class CEventThrottle {
 public:
  static constexpr std::chrono::milliseconds kInterval{100};

  explicit CEventThrottle(CEventQueue& events) : events_(events) {}

  void setRunning(bool running) { running_ = running; }
  bool running() const { return running_; }

  void file(const FileState& state);
  // Call it after every change of the group.
  void group(const CTransferGroup& group, TimePoint now);
  // At the start, whatever was reported before. Completed groups are left out, as the program opens
  // the folder of a completed download.
  void groupAnew(const CTransferGroup& group, TimePoint now);
  void forget(std::int32_t groupId);

  bool hasDue() const { return !due_.empty(); }
  // Reports the progress of groups whose interval is over. `groupOf` returns a group or null by its
  // id.
  template <typename GroupOf>
  void notifyDue(GroupOf groupOf, TimePoint now) {
    const std::set<std::int32_t> due = due_;
    for (const std::int32_t id : due) {
      const CTransferGroup* group = groupOf(id);
      if (group == nullptr) {
        due_.erase(id);
      } else if (now - reported_[id].when >= kInterval) {
        notify(*group, now);
      }
    }
  }

 private:
  struct LastReported {
    TimePoint when{};
    std::int32_t state = -1;
    bool paused = false;
    bool cancelled = false;
    bool marked = false;
    bool empty = false;
    bool operator==(const LastReported&) const = default;
  };

  void notify(const CTransferGroup& group, TimePoint now);
  void remember(const GroupSnapshot& shot, TimePoint now);

  CEventQueue& events_;
  bool running_ = false;
  std::map<std::int32_t, LastReported> reported_;
  std::set<std::int32_t> due_;
};

}  // namespace zt_transfers
