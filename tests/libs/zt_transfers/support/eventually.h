#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace zt_transfers::test {

// Polls until the condition holds, for a minute at most. Returns whether it held.
inline bool eventually(const std::function<bool()>& holds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!holds()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

}  // namespace zt_transfers::test
