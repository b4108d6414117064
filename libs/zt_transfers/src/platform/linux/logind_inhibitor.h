#pragma once

#include <string>

#include "base/unique_fd.h"
#include "power/sleep_inhibitor.h"

namespace zt_transfers {

// Takes an inhibitor lock of systemd's login manager over D-Bus. The lock ends when its file
// descriptor is closed, and so with the process.
class CLogindInhibitor final : public ISleepInhibitor {
 public:
  CLogindInhibitor(std::string reason, ILog& log);

  void inhibit() override;
  void release() override;

 private:
  const std::string reason_;
  ILog& log_;
  CUniqueFd lock_;
  bool failureTold_ = false;
};

}  // namespace zt_transfers
