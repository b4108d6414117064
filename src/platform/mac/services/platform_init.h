#pragma once

#include "services/platform_init.h"

namespace zantrio {

// Starts the crash reporter and registers the application's services for other programs. Logs with
// NSLog.
class CPlatformInitMac : public IPlatformInit {
 public:
  void init() override;
};

}  // namespace zantrio
