#pragma once

#include <memory>
#include <utility>
#include <vector>

namespace zt_transfers {

// Keeps objects that have finished while one of their functions may still be on the stack. An
// object reports its end last and is retired by the receiver; nothing calls it from then on.
//
// Thread: one.
class CRetired {
 public:
  template <typename Object>
  void add(std::unique_ptr<Object> object) {
    if (object) {
      objects_.push_back(std::shared_ptr<void>(std::move(object)));
    }
  }
  // Destroys them. Call it from the bottom of the thread's stack.
  void clear() {
    while (!objects_.empty()) {
      std::exchange(objects_, {}).clear();
    }
  }

 private:
  std::vector<std::shared_ptr<void>> objects_;
};

}  // namespace zt_transfers
