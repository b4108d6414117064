#include "http/liveness.h"

#include <algorithm>

namespace zt_transfers {

CLiveness::Phase CLiveness::phaseOf(const ExchangeState& state) {
  if (!state.connected) {
    return Phase::kConnecting;
  }
  if (state.responseBegun) {
    return Phase::kReceiving;
  }
  return state.requestGiven && state.unconfirmed == 0 ? Phase::kWaiting : Phase::kSending;
}

bool CLiveness::isProgress(const ExchangeState& before, const ExchangeState& now) {
  const auto confirmed = [](const ExchangeState& state) {
    return static_cast<std::int64_t>(state.given) - static_cast<std::int64_t>(state.unconfirmed);
  };
  return now.received > before.received || confirmed(now) > confirmed(before);
}

CLiveness::Finding CLiveness::look(const ExchangeState& state, TimePoint now) {
  const Phase phase = phaseOf(state);
  if (isProgress(last_, state)) {
    moved_ = now;
    since_ = now;
  }
  if (state.held) {
    since_ = now;
  } else if (phase != phase_) {
    // The machine may have slept since it began.
    since_ = std::max(since_, looked_);
  }
  looked_ = now;
  if (phase >= Phase::kWaiting && !requestOut_) {
    requestOut_ = now;
  }
  phase_ = phase;
  last_ = state;
  const bool tooLong = patience_.wholeResponse > Duration::zero() && requestOut_ &&
                       now - *requestOut_ > patience_.wholeResponse;
  if (now - since_ <= limit() && !tooLong) {
    return Finding::kAlive;
  }
  return phase_ == Phase::kConnecting ? Finding::kNotConnected : Finding::kStalled;
}

Duration CLiveness::limit() const {
  switch (phase_) {
    case Phase::kConnecting:
      // libcurl limits the connecting itself; another exchange's may come before.
      return 2 * patience_.connect;
    case Phase::kSending:
      return patience_.send;
    case Phase::kWaiting:
      return patience_.response;
    default:
      return patience_.receive;
  }
}

}  // namespace zt_transfers
