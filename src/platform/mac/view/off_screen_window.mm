#include "platform/mac/view/off_screen_window.h"

#include "app/log/guarded_call.h"
#include "osr/view/osr_view.h"
#include "platform/mac/view/client_opengl_view.h"
#include "platform/mac/view/osr_view.h"

// The window's styles have newer names, which older systems lack.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

@implementation OffScreenWindowDelegate

- (id)initWithView:(ClientOpenGLView*)view {
  self = [super init];
  if (self != nil) {
    view_ = view;
  }
  return self;
}

// The page and the client can refuse; the window closes with the browser, or at once without one.
- (BOOL)windowShouldClose:(id)sender {
  (void)sender;
  bool close = false;
  zantrio::guardedCall("windowShouldClose", [&] {
    if (const CefRefPtr<CefBrowserHost> host = [view_ browserHost]) {
      host->CloseBrowser(false);
    } else {
      close = true;
    }
  });
  if (close) {
    [[view_ retain] autorelease];  // the window releases it, and it owns this delegate
  }
  return close;
}

@end

namespace client {
namespace {

// Releases itself when closed; the view closes it with its browser.
NSWindow* openWindow(const OffScreenViewOptions& options, NSRect frame) {
  NSWindow* const window =
      [[NSWindow alloc] initWithContentRect:frame
                                  styleMask:NSTitledWindowMask | NSClosableWindowMask |
                                            NSMiniaturizableWindowMask | NSResizableWindowMask
                                    backing:NSBackingStoreBuffered
                                      defer:NO];
  [window setReleasedWhenClosed:YES];
  [window setTitle:[NSString stringWithUTF8String:options.title.c_str()]];
  return window;
}

NSRect frameOf(const CefRect& bounds) {
  return NSMakeRect(bounds.x, bounds.y, bounds.width, bounds.height);
}

}  // namespace

std::shared_ptr<OsrView> createOffScreenView(const OffScreenViewOptions& options,
                                             std::string& error) {
  @autoreleasepool {
    const NSRect frame = frameOf(options.bounds);
    ClientOpenGLView* const view =
        [[[ClientOpenGLView alloc] initWithFrame:NSMakeRect(0, 0, NSWidth(frame), NSHeight(frame))
                                 andTransparency:options.transparent
                               andShowUpdateRect:options.showUpdateRect] autorelease];
    if (view == nil) {
      error = "the system has no suitable OpenGL";
      return nullptr;
    }
    [view setBrowserProvider:options.browserProvider];
    NSWindow* const window = openWindow(options, frame);
    [window setContentView:view];
    [window setDelegate:[view windowDelegate]];
    [window makeFirstResponder:view];
    [window makeKeyAndOrderFront:nil];
    return [view osrView];
  }
}

CefWindowHandle windowOf(const OsrView& view) {
  const auto* const known = dynamic_cast<const OsrViewMac*>(&view);
  return known != nullptr ? (CefWindowHandle)known->view() : kNullWindowHandle;
}

}  // namespace client
