#pragma once

#import <AppKit/AppKit.h>

namespace zantrio::mac_test {

// While it lives, the application is one that records what it is told, and so does what refreshes
// the system's services list. Its delegate is an object without abilities.
class ApplicationInPlace {
 public:
  ApplicationInPlace();
  ApplicationInPlace(const ApplicationInPlace&) = delete;
  ApplicationInPlace& operator=(const ApplicationInPlace&) = delete;
  ~ApplicationInPlace();

  id delegate() const;
  id servicesProvider() const;

 private:
  NSApplication* const before_;
};

}  // namespace zantrio::mac_test
