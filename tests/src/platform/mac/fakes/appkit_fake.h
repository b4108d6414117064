#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "src/platform/mac/fakes/method_swap.h"

namespace zantrio::mac_test {

// The calls of AppKit that GNUstep lacks, and their results. Global; reset for each test.
struct AppKitRecord {
  CGFloat scale = 1;  // of views and of TestWindow
  bool grayScreen = false;
  int trackingAreas = 0;
  bool bestResolution = false;
  // The monitor of scroll events; nil when there is none.
  NSEvent* (^monitor)(NSEvent* event) = nil;
  NSEventMask monitored = 0;
  int liveViews = 0;      // of TestView
  bool resizing = false;  // in TestView's window
  // The input method's reaction to a press in TestView.
  std::function<void()> inputMethod;

  // The last drag of an image.
  bool dragRaises = false;
  NSPoint dragStart = NSZeroPoint;
  NSPoint dragPress = NSZeroPoint;  // in the window
  id dragPasteboard = nil;          // not owned
};

AppKitRecord& appKit();

// Records drags of images instead of running them.
std::unique_ptr<InstanceMethodSwap> putImageDragInPlace();

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

// A precise vertical scroll event of a gesture.
@interface GestureEvent : NSEvent {
 @public
  NSPoint _location;
  NSEventPhase _phase;
  CGFloat _deltaY;
}
@end
