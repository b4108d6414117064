#include "platform/mac/view/off_screen_window_delegate.h"

#include "app/log/guarded_call.h"
#include "platform/mac/view/client_opengl_view.h"

@implementation OffScreenWindowDelegate

- (id)initWithView:(ClientOpenGLView*)view {
  self = [super init];
  if (self != nil) {
    view_ = view;
  }
  return self;
}

// The page and the client are asked first, and the window goes with the browser; at once when there
// is none.
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
    [[view_ retain] autorelease];  // which the window lets go of, and which has this delegate
  }
  return close;
}

@end
