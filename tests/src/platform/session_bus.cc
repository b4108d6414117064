#include "src/platform/session_bus.h"

#include <stdexcept>

#include "src/platform/event_loop.h"

namespace zantrio::test {

SessionBus::SessionBus() {
  daemon_.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
  while (!daemon_.canReadLine()) {
    if (!daemon_.waitForReadyRead(kWaitLimitMs)) {
      throw std::runtime_error("dbus-daemon does not start");
    }
  }
  qputenv("DBUS_SESSION_BUS_ADDRESS", daemon_.readLine().trimmed());
}

SessionBus::~SessionBus() {
  daemon_.terminate();
  daemon_.waitForFinished(kWaitLimitMs);
}

}  // namespace zantrio::test
