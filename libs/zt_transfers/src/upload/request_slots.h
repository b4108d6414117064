#pragma once

#include <cstddef>
#include <functional>
#include <utility>

namespace zt_transfers {

// Limits the number of concurrent requests. Every file that is being sent has one slot of its own;
// the remaining slots serve further parts of files.
//
// Thread: the loop's.
class CRequestSlots {
 public:
  // `freed` is called when a slot becomes free after one was refused.
  explicit CRequestSlots(std::function<void()> freed) : freed_(std::move(freed)) {}

  void setMax(std::size_t max) { max_ = max; }
  void addFile() { ++files_; }
  void removeFile() {
    --files_;
    notifyFreed();
  }

  // Takes a slot in addition to the file's own, if one is free.
  bool takeExtra() {
    const bool room = files_ + extras_ < max_;
    extras_ += room ? 1 : 0;
    refused_ = refused_ || !room;
    return room;
  }
  void giveBackExtra() {
    --extras_;
    notifyFreed();
  }

 private:
  void notifyFreed() {
    if (std::exchange(refused_, false)) {
      freed_();
    }
  }

  const std::function<void()> freed_;
  std::size_t max_ = 1;
  std::size_t files_ = 0;
  std::size_t extras_ = 0;
  bool refused_ = false;
};

}  // namespace zt_transfers
