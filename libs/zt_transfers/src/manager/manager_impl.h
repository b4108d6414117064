#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "manager/manager_core.h"
#include "manager/subscription.h"

namespace zt_transfers {

// The operations that both managers share. `Manager` is the public class, `File` its description
// of a file; the functions convert between the public records and the engine's.
//
// Thread: as the managers.
template <typename Manager, typename File>
class CManagerImpl {
 public:
  using GroupState = typename Manager::GroupState;
  using Callback = typename Manager::ICallback;

  struct Conversions {
    GroupState (*groupState)(const GroupSnapshot&);
    FileSpec (*spec)(const File&);
  };

  CManagerImpl(CManagerCore::Options options, const Conversions& conversions)
      : conversions_(conversions), core_(delivering(std::move(options))) {
    core_.configure(configuration);
  }

  CManagerCore& core() { return core_; }
  CTransferEngine& engine() { return core_.engine(); }
  void subscribe(Callback* callback) { subscription_.set(callback); }

  void fetchGroups(std::vector<GroupState>& groups) {
    groups.clear();
    for (const GroupSnapshot& shot : core_.engineToRead().groups()) {
      groups.push_back(conversions_.groupState(shot));
    }
  }
  int fetchGroup(std::int32_t groupId, GroupState& state) {
    const auto shot = core_.engineToRead().group(groupId);
    if (!shot) {
      return -1;
    }
    state = conversions_.groupState(*shot);
    return 0;
  }
  void queueFiles(std::int32_t groupId, const std::vector<File>& files) {
    inBatches(files, conversions_.spec,
              [&](const auto& specs) { engine().queueFiles(groupId, specs); });
  }
  void dequeueFiles(std::int32_t groupId, const std::vector<File>& files) {
    inBatches(
        files, [](const File& file) { return file.fileId; },
        [&](const auto& fileIds) { engine().dequeueFiles(groupId, fileIds); });
  }

  typename Manager::Configuration configuration;

 private:
  static constexpr std::size_t kMaxBatch = 1024;  // files

  CManagerCore::Options delivering(CManagerCore::Options options) {
    options.deliver = [this](const TransferEvent& event) {
      subscription_.call([&](Callback& callback) {
        if (const auto* group = std::get_if<GroupSnapshot>(&event)) {
          callback.onGroupStateChanged(conversions_.groupState(*group));
        } else {
          callback.onFileStateChanged(std::get<FileState>(event));
        }
      });
    };
    return options;
  }

  // Converts and passes a long list in batches, so that its copies stay small and the engine serves
  // its transfers in between. Calls `use` at least once.
  template <typename Convert, typename Use>
  static void inBatches(const std::vector<File>& files, Convert convert, Use use) {
    auto begin = files.begin();
    do {
      const auto left = static_cast<std::size_t>(files.end() - begin);
      const auto end = begin + static_cast<std::ptrdiff_t>(std::min(left, kMaxBatch));
      std::vector<decltype(convert(*begin))> batch;
      batch.reserve(static_cast<std::size_t>(end - begin));
      std::transform(begin, end, std::back_inserter(batch), convert);
      use(batch);
      begin = end;
    } while (begin != files.end());
  }

  const Conversions conversions_;
  CSubscription<Callback> subscription_;
  CManagerCore core_;  // last, so that its threads end first
};

}  // namespace zt_transfers
