#pragma once

#include "services/platform_init.h"

namespace zantrio {

// Gives the application the name and the icon under which the desktop knows it. Tells the system's
// log (syslog) what it does.
class CPlatformInitLinux : public IPlatformInit {
 public:
  void init() override;
};

}  // namespace zantrio
