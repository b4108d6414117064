#pragma once

#import <AppKit/AppKit.h>

namespace zantrio::mac_test {

// Replaces NSApp by a recorder while it lives. Its delegate is a plain object.
class ApplicationInPlace {
 public:
  ApplicationInPlace();
  ApplicationInPlace(const ApplicationInPlace&) = delete;
  ApplicationInPlace& operator=(const ApplicationInPlace&) = delete;
  ~ApplicationInPlace();

 private:
  NSApplication* const before_;
};

}  // namespace zantrio::mac_test
