#pragma once

#include <stdexcept>

#include "include/cef_frame.h"
#include "osr/client_osr_handler.h"
#include "platform/mac/view/client_opengl_view.h"
#include "src/fakes/fake_browser.h"
#include "src/platform/mac/fakes/appkit_fake.h"
#include "src/platform/mac/mac_fixture.h"

// Counts its instances. The record decides whether it is in a live resize.
@interface TestView : ClientOpenGLView
@end

// A window with the record's scale.
@interface TestWindow : NSWindow
@end

namespace zantrio::mac_test {

using Lines = std::vector<std::string>;

// A view of 200 × 100 points in a window at (50, 30), with a recording browser.
class ViewTest : public MacTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  client::OsrView& osrView() { return *[view_ osrView]; }
  CefRefPtr<client::RenderHandler> handler() { return handler_; }
  // Returns and clears the calls of the browser.
  Lines sent();

  static NSEvent* mouse(NSEventType type, NSPoint point, NSUInteger flags = 0, int clicks = 1);
  static NSEvent* crossing(NSEventType type, NSPoint point);
  static NSEvent* key(NSEventType type, unsigned short code, NSString* characters,
                      NSUInteger flags = 0);
  static GestureEvent* gesture(NSEventPhase phase, NSPoint point, CGFloat deltaY);

  CefRefPtr<zantrio::test::FakeHost> host_;
  CefRefPtr<zantrio::test::FakeBrowser> browser_;
  TestWindow* window_ = nil;
  TestView* view_ = nil;

 private:
  CefRefPtr<client::RenderHandler> handler_;
};

}  // namespace zantrio::mac_test
