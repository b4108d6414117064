#pragma once

#include "services/platform_init.h"

namespace zantrio {

// Puts the watcher of crashes to work, which main has prepared (ProcessPreparation). Then tells the
// desktop which of its applications this is and gives all windows their icon. There is no
// display name: the toolkit would append it to the titles of windows, which are fixed texts. The
// system's log (syslog) is told what happens.
class CPlatformInitLinux : public IPlatformInit {
 public:
  void init() override;
};

}  // namespace zantrio
