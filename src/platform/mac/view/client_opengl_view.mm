#include "platform/mac/view/client_opengl_view.h"

#include <objc/runtime.h>

#include "app/log/guarded_call.h"
#include "osr/view/view_scale.h"
#include "platform/mac/view/client_opengl_view_parts.h"
#include "platform/mac/view/drag_pasteboard.h"
#include "platform/mac/view/off_screen_window.h"

// Uses the deprecated OpenGL, pasteboard type and scale APIs.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

using zantrio::guardedCall;

namespace client {

ViewParts::ViewParts(ClientOpenGLView* view, bool transparent, bool showUpdateRect)
    : osr(std::make_shared<OsrViewMac>(view, transparent, showUpdateRect)),
      scroll({[view] { [view installEndWheelMonitor]; }, [view] { [view removeEndWheelMonitor]; }},
             [this](const SystemEvent& event) { mouse.sendScrollWheel(event); }) {}

ViewParts::~ViewParts() {
  osr->detach();
}

CefRefPtr<CefBrowserHost> ViewParts::host() const {
  const CefRefPtr<CefBrowser> browser = osr->browser();
  return browser ? browser->GetHost() : nullptr;
}

}  // namespace client

namespace {

NSOpenGLPixelFormat* makePixelFormat() {
  constexpr auto kDepthBits = static_cast<NSOpenGLPixelFormatAttribute>(24);
  constexpr auto kEnd = static_cast<NSOpenGLPixelFormatAttribute>(0);
  NSOpenGLPixelFormatAttribute attributes[] = {NSOpenGLPFADoubleBuffer, NSOpenGLPFADepthSize,
                                               kDepthBits, kEnd};
  return [[[NSOpenGLPixelFormat alloc] initWithAttributes:attributes] autorelease];
}

}  // namespace

@implementation ClientOpenGLView

- (id)initWithFrame:(NSRect)frame
      andTransparency:(BOOL)transparency
    andShowUpdateRect:(BOOL)showUpdateRect {
  NSOpenGLPixelFormat* const format = makePixelFormat();
  if (format == nil) {
    [self release];
    return nil;
  }
  self = [super initWithFrame:frame pixelFormat:format];
  if (self == nil) {
    return nil;
  }
  parts_ = new client::ViewParts(self, transparency, showUpdateRect);
  windowDelegate_ = [[OffScreenWindowDelegate alloc] initWithView:self];
  tracking_area_ =
      [[NSTrackingArea alloc] initWithRect:frame
                                   options:NSTrackingMouseEnteredAndExited | NSTrackingMouseMoved |
                                           NSTrackingActiveInActiveApp | NSTrackingInVisibleRect
                                     owner:self
                                  userInfo:nil];
  [self addTrackingArea:tracking_area_];
  [self registerForDraggedTypes:[NSArray arrayWithObjects:client::kDragDummyPboardType,
                                                          NSFilenamesPboardType, NSStringPboardType,
                                                          nil]];
  if ([self respondsToSelector:@selector(setWantsBestResolutionOpenGLSurface:)]) {
    [self setWantsBestResolutionOpenGLSurface:YES];
  }
  return self;
}

- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  if (parts_ != nullptr) {
    [self removeEndWheelMonitor];
    [self withdrawPromises];
    [self removeTrackingArea:tracking_area_];
    // The texture belongs to the context.
    [[self openGLContext] makeCurrentContext];
    delete parts_;
    parts_ = nullptr;  // AppKit still calls the view during deallocation
    [NSOpenGLContext clearCurrentContext];
  }
  [tracking_area_ release];
  [windowDelegate_ release];
  [super dealloc];
}

- (void)setBrowserProvider:(client::BrowserProvider)provider {
  parts_->osr->setBrowserProvider(std::move(provider));
}

- (CefRefPtr<CefBrowserHost>)browserHost {
  return parts_->host();
}

- (std::shared_ptr<client::OsrView>)osrView {
  return parts_->osr;
}

- (id<NSWindowDelegate>)windowDelegate {
  return windowDelegate_;
}

- (void)browserClosed {
  // The window releases the view.
  [[self retain] autorelease];
  [NSObject cancelPreviousPerformRequestsWithTarget:self];
  [[self window] close];
}

- (bool)was_last_mouse_down_on_view {
  return parts_->mouse.wasLastMouseDownOnView();
}

- (void)setWas_last_mouse_down_on_view:(bool)was {
  parts_->mouse.setWasLastMouseDownOnView(was);
}

// Window

- (void)viewWillMoveToWindow:(NSWindow*)window {
  [super viewWillMoveToWindow:window];
  [self stopObservingBackingProperties];
  if ([[self window] delegate] == windowDelegate_) {
    [[self window] setDelegate:nil];  // which does not keep it
  }
}

- (void)viewDidMoveToWindow {
  [super viewDidMoveToWindow];
  if ([self window] != nil && [ClientOpenGLView windowsTellOfBackingProperties]) {
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(windowDidChangeBackingProperties:)
                                                 name:NSWindowDidChangeBackingPropertiesNotification
                                               object:[self window]];
  }
}

+ (BOOL)windowsTellOfBackingProperties {
  static const bool tell =
      protocol_getMethodDescription(@protocol(NSWindowDelegate),
                                    @selector(windowDidChangeBackingProperties:), NO, YES)
          .name != nullptr;
  return tell;
}

- (void)stopObservingBackingProperties {
  if ([ClientOpenGLView windowsTellOfBackingProperties]) {
    [[NSNotificationCenter defaultCenter]
        removeObserver:self
                  name:NSWindowDidChangeBackingPropertiesNotification
                object:[self window]];
  }
}

// Focus and size

- (BOOL)acceptsFirstResponder {
  return YES;
}

- (BOOL)becomeFirstResponder {
  [self setFocusOfBrowser:true];
  return [super becomeFirstResponder];
}

- (BOOL)resignFirstResponder {
  [self setFocusOfBrowser:false];
  return [super resignFirstResponder];
}

- (void)setFocusOfBrowser:(bool)focus {
  guardedCall("setFocusOfBrowser", [self, focus] {
    if (const CefRefPtr<CefBrowserHost> host = parts_->host()) {
      host->SetFocus(focus);
    }
  });
}

- (void)setFrameSize:(NSSize)size {
  [super setFrameSize:size];
  guardedCall("setFrameSize", [self] {
    const CefRefPtr<CefBrowserHost> host = parts_ != nullptr ? parts_->host() : nullptr;
    if (host) {
      host->WasResized();
    }
  });
}

// Scale and drawing

- (float)getDeviceScaleFactor {
  NSWindow* const window = [self window];
  std::optional<client::WindowScale> scale;
  if ([window respondsToSelector:@selector(backingScaleFactor)]) {
    scale = {static_cast<float>([window backingScaleFactor]), 1};
  } else if (window != nil) {
    scale = {std::nullopt, static_cast<float>([window userSpaceScaleFactor])};
  }
  return client::getDeviceScaleFactor(scale);
}

- (NSRect)convertRectToBackingInternal:(NSRect)rect {
  return [self respondsToSelector:@selector(convertRectToBacking:)]
             ? [self convertRectToBacking:rect]
             : rect;
}

- (NSRect)convertRectFromBackingInternal:(NSRect)rect {
  return [self respondsToSelector:@selector(convertRectFromBacking:)]
             ? [self convertRectFromBacking:rect]
             : rect;
}

- (void)windowDidChangeBackingProperties:(NSNotification*)notification {
  guardedCall("windowDidChangeBackingProperties", [self, notification] {
    NSNumber* const old = [[notification userInfo] objectForKey:NSBackingPropertyOldScaleFactorKey];
    client::reportScaleChange(*parts_->osr, [old floatValue]);
  });
}

- (BOOL)isOpaque {
  return YES;  // the renderer draws a background below transparent pages
}

- (void)drawRect:(NSRect)dirty {
  (void)dirty;
  guardedCall("drawRect", [self] {
    const CefRefPtr<CefBrowserHost> host = parts_->host();
    if ([self inLiveResize] && host) {
      host->Invalidate(PET_VIEW);
    }
    client::OsrViewMac& view = *parts_->osr;
    view.makeContextCurrent();
    view.renderer().Render();
    view.clearCurrentContext();
    view.flushContext();
  });
}

@end
