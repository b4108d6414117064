#pragma once

#include "services/platform_init.h"

namespace zantrio {

// Starts the crash reporter and offers the application's services to other programs. What happens
// goes to the system's log.
class CPlatformInitMac : public IPlatformInit {
 public:
  void init() override;
};

}  // namespace zantrio
