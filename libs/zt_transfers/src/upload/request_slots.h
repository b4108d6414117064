#pragma once

#include <cstddef>
#include <functional>
#include <utility>

namespace zt_transfers {

// Shares out how many requests may be under way at a time. Every file that is being sent has one as
// its own; what is left can be used for further parts of files.
//
// Thread: the loop's.
class CRequestSlots {
 public:
  // `freed` is called when there may be room again for who got none.
  explicit CRequestSlots(std::function<void()> freed) : freed_(std::move(freed)) {}

  void setMax(std::size_t most) { max_ = most; }
  void addFile() { ++files_; }
  void removeFile() {
    --files_;
    tellFreed();
  }

  // One more than the file's own, if there is room.
  bool takeExtra() {
    const bool room = files_ + extras_ < max_;
    extras_ += room ? 1 : 0;
    wanted_ = wanted_ || !room;
    return room;
  }
  void giveBackExtra() {
    --extras_;
    tellFreed();
  }

 private:
  void tellFreed() {
    if (std::exchange(wanted_, false)) {
      freed_();
    }
  }

  const std::function<void()> freed_;
  std::size_t max_ = 1;
  std::size_t files_ = 0;
  std::size_t extras_ = 0;
  bool wanted_ = false;  // somebody got none
};

}  // namespace zt_transfers
