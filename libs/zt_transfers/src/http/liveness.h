#pragma once

#include <cstdint>
#include <optional>

#include "base/clock.h"
#include "http/patience.h"

namespace zt_transfers {

// What is known of an exchange at one moment.
struct ExchangeState {
  bool connected = false;  // also by TLS and through a proxy
  bool requestGiven = false;
  bool responseBegun = false;
  bool held = false;              // this side holds its bytes back
  std::uint64_t given = 0;        // bytes of the body that the system was given
  std::uint64_t unconfirmed = 0;  // bytes in the system's queue; 0 if they are not its own alone
  std::uint64_t received = 0;     // bytes of the response
};

// Observes whether an exchange makes progress. Bytes that were given to the system are no progress
// until the peer's system has confirmed them: they may lie in a queue of this machine.
class CLiveness {
 public:
  enum class Finding {
    kAlive,
    kNotConnected,  // in time
    kStalled,
  };

  CLiveness(const HttpPatience& patience, TimePoint now)
      : patience_(patience), since_(now), looked_(now) {}

  Finding look(const ExchangeState& state, TimePoint now);
  // Whether bytes moved after the last progress of the other one.
  bool movedAfter(const CLiveness& other) const { return moved_ && *moved_ > other.since_; }

 private:
  enum class Phase { kConnecting, kSending, kWaiting, kReceiving };
  static Phase phaseOf(const ExchangeState& state);
  static bool isProgress(const ExchangeState& before, const ExchangeState& now);
  Duration limit() const;

  const HttpPatience patience_;
  Phase phase_ = Phase::kConnecting;
  ExchangeState last_;
  TimePoint since_;  // the last progress, or the beginning of the phase
  TimePoint looked_;
  std::optional<TimePoint> moved_;       // when bytes were last seen to have moved
  std::optional<TimePoint> requestOut_;  // when the request had been sent completely
};

}  // namespace zt_transfers
