#include "platform/linux/logind_inhibitor.h"

#include <fcntl.h>
#include <systemd/sd-bus.h>

#include <system_error>
#include <utility>

namespace zt_transfers {
namespace {

constexpr std::uint64_t kAnswerLimitMicroseconds = 2'000'000;

struct BusClose {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
struct MessageUnref {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Bus = std::unique_ptr<sd_bus, BusClose>;
using Message = std::unique_ptr<sd_bus_message, MessageUnref>;

// Of a negative result of the bus library.
std::string textOf(int result) {
  return std::generic_category().message(-result);
}

class BusError {
 public:
  BusError() = default;
  BusError(const BusError&) = delete;
  BusError& operator=(const BusError&) = delete;
  ~BusError() { sd_bus_error_free(&error_); }

  sd_bus_error* get() { return &error_; }
  std::string text(int result) const {
    return error_.message != nullptr ? error_.message : textOf(result);
  }

 private:
  sd_bus_error error_ = SD_BUS_ERROR_NULL;
};

// The lock, or why there is none.
struct Taken {
  CUniqueFd lock;
  std::string failure;
};

Taken takeLock(const std::string& reason) {
  sd_bus* opened = nullptr;
  if (const int result = sd_bus_open_system(&opened); result < 0) {
    return {{}, "no system bus: " + textOf(result)};
  }
  const Bus bus(opened);
  sd_bus_set_method_call_timeout(bus.get(), kAnswerLimitMicroseconds);

  BusError error;
  sd_bus_message* answered = nullptr;
  int result =
      sd_bus_call_method(bus.get(), "org.freedesktop.login1", "/org/freedesktop/login1",
                         "org.freedesktop.login1.Manager", "Inhibit", error.get(), &answered,
                         "ssss", "sleep:idle", "Zantrio", reason.c_str(), "block");
  const Message response(answered);
  int descriptor = -1;
  if (result >= 0) {
    result = sd_bus_message_read(response.get(), "h", &descriptor);
  }
  if (result < 0) {
    return {{}, "the login manager: " + error.text(result)};
  }
  // The message closes its own descriptor.
  return {CUniqueFd(::fcntl(descriptor, F_DUPFD_CLOEXEC, 3)), {}};
}

}  // namespace

CLogindInhibitor::CLogindInhibitor(std::string reason, ILog& log)
    : reason_(std::move(reason)), log_(log) {}

void CLogindInhibitor::inhibit() {
  if (lock_.valid()) {
    return;
  }
  Taken taken = takeLock(reason_);
  lock_ = std::move(taken.lock);
  if (!lock_.valid() && !std::exchange(failureTold_, true)) {
    log_.warning("The machine may go to sleep during transfers, it cannot be kept awake: " +
                 taken.failure);
  }
}

void CLogindInhibitor::release() {
  lock_.reset();
}

std::unique_ptr<ISleepInhibitor> makeSleepInhibitor(std::string reason, ILog& log) {
  return std::make_unique<CLogindInhibitor>(std::move(reason), log);
}

}  // namespace zt_transfers
