#pragma once

namespace zantrio::mac_test {

// What the framework's loader and sandbox answer.
struct FrameworkFake {
  bool loads = true;
  bool entersSandbox = true;
};

FrameworkFake& framework();

}  // namespace zantrio::mac_test
