#pragma once

#include <chrono>

namespace zt_transfers {

// How long each phase of an exchange may go on without progress.
struct HttpPatience {
  std::chrono::seconds connect{30};   // as a whole
  std::chrono::seconds send{60};      // until the peer's system confirms more bytes
  std::chrono::seconds response{60};  // from the request's last byte to the response's first
  std::chrono::seconds receive{60};   // until more of the response arrives
  // From the request's last byte to the response's last, with progress or without; 0: no limit.
  std::chrono::seconds wholeResponse{0};
};

// For a request after which a server may have to check, copy or distribute large content.
inline constexpr HttpPatience kPatienceWithContent{.response = std::chrono::minutes(10),
                                                   .wholeResponse = std::chrono::minutes(15)};

}  // namespace zt_transfers
