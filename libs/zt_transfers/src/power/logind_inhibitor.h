#pragma once

#include <string>

#include "base/unique_fd.h"
#include "power/sleep_inhibitor.h"

namespace zt_transfers {

// Takes an inhibitor lock of systemd's login manager, by D-Bus. The lock lasts as long as its file
// descriptor is open, so it ends with the process, however that ends.
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
