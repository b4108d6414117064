#pragma once

#include "services/platform_init.h"

namespace zantrio {

// Starts the crash watcher that main prepared (ProcessPreparation), then sets the application's
// desktop file name and window icon. Sets no display name: Qt would append it to window titles,
// which are fixed texts. Logs to syslog.
class CPlatformInitLinux : public IPlatformInit {
 public:
  void init() override;
};

}  // namespace zantrio
