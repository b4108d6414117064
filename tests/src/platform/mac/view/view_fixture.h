#pragma once

#include <stdexcept>

#include "include/cef_frame.h"
#include "osr/osr_window.h"
#include "platform/mac/view/client_opengl_view.h"
#include "src/osr/renderer/pixels.h"
#include "src/osr/view/fake_osr_view.h"
#include "src/platform/mac/fakes/view_fake.h"
#include "src/platform/mac/mac_fixture.h"

// A view that is counted, and is resized when the fake says so.
@interface TestView : ClientOpenGLView
@end

// A window with the fake's scale.
@interface TestWindow : NSWindow
@end

namespace zantrio::mac_test {

using Lines = std::vector<std::string>;

// Records what the view's resizing leads to, too.
class ViewHost : public client::test::RecordingHost {
 public:
  void WasResized() override { lines.emplace_back("resized"); }
};

// A view of 200 × 100 points in a window at (50, 30) of the screen, with a browser that records.
class ViewTest : public MacTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  client::OsrView& osrView() { return *[view_ osrView]; }
  CefRefPtr<client::RenderHandler> handler() { return handler_; }
  // Hands a frame over, as the browser does.
  void paint(const client::test::Pixels& pixels);
  // Gives what was sent to the browser since the last call.
  Lines sent();

  static NSEvent* mouse(NSEventType type, NSPoint point, NSUInteger flags = 0, int clicks = 1);
  static NSEvent* crossing(NSEventType type, NSPoint point);
  static NSEvent* key(NSEventType type, unsigned short code, NSString* characters,
                      NSUInteger flags = 0);
  static GestureEvent* gesture(NSEventPhase phase, NSPoint point, CGFloat deltaY);

  CefRefPtr<ViewHost> host_;
  CefRefPtr<zantrio::test::FakeBrowser> browser_;
  TestWindow* window_ = nil;
  TestView* view_ = nil;

 private:
  CefRefPtr<client::RenderHandler> handler_;
};

}  // namespace zantrio::mac_test
