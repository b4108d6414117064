#pragma once

#import <AppKit/AppKit.h>

#include <memory>

#include "osr/view/osr_view.h"

@class OffScreenWindowDelegate;

namespace client {
class ViewParts;
}

// Shows an off-screen browser and sends it input: converts the system's events for the portable
// classes and implements their requests. Source of drags out of the page and destination of drags
// into it.
//
// Ownership: as any view. Thread: main, which is the framework's UI thread. Errors: C++ exceptions
// are logged under the operation's name, exceptions of the system's pasteboard or drag with NSLog;
// neither reaches the system.
@interface ClientOpenGLView : NSOpenGLView {
 @private
  client::ViewParts* parts_;
  NSTrackingArea* tracking_area_;
  OffScreenWindowDelegate* windowDelegate_;
  id endWheelMonitor_;        // nil: no scroll gesture runs
  NSPasteboard* pasteboard_;  // of the drag that runs
  NSString* fileUTI_;         // type of the file contents that the drag promises
  NSInteger promisedChange_;  // state of the pasteboard since which it has this view's promises
}

// Returns nil if the system has no OpenGL.
- (id)initWithFrame:(NSRect)frame
      andTransparency:(BOOL)transparency
    andShowUpdateRect:(BOOL)showUpdateRect;

- (void)setBrowserProvider:(client::BrowserProvider)provider;
// Null before the browser exists and once it is closed.
- (CefRefPtr<CefBrowserHost>)browserHost;
// The window's delegate, which is asked before the window closes.
- (id<NSWindowDelegate>)windowDelegate;
// Called when the browser is closed; closes the window.
- (void)browserClosed;

// The view's portable interface; usable as long as the view exists. Hold it weakly.
- (std::shared_ptr<client::OsrView>)osrView;

// Whether the last press was on the page, not on its pop-up.
- (bool)was_last_mouse_down_on_view;
- (void)setWas_last_mouse_down_on_view:(bool)was;

- (float)getDeviceScaleFactor;
- (NSRect)convertRectToBackingInternal:(NSRect)rect;
- (NSRect)convertRectFromBackingInternal:(NSRect)rect;
- (void)windowDidChangeBackingProperties:(NSNotification*)notification;
- (void)stopObservingBackingProperties;

@end

@interface ClientOpenGLView (Input)

- (void)sendMouseClick:(NSEvent*)event button:(cef_mouse_button_type_t)button isUp:(bool)isUp;
// Only sends; `scrollWheel:` monitors the gesture first.
- (void)sendScrollWheelEvet:(NSEvent*)event;
// A scroll event anywhere in the application during a gesture that began in the view.
- (void)shortCircuitScrollWheelEvent:(NSEvent*)event;
- (void)installEndWheelMonitor;
- (void)removeEndWheelMonitor;

@end

// Text of input methods, including dead keys. Ranges count UTF-16 units.
@interface ClientOpenGLView (Text) <NSTextInputClient>
@end

@interface ClientOpenGLView (Drags) <NSDraggingSource>

// `point`: from the view's upper left corner. Returns NO if the drag cannot start. The drag runs a
// nested loop, started from the application's loop.
- (BOOL)startDragging:(CefRefPtr<CefDragData>)data
          allowed_ops:(cef_drag_operations_mask_t)allowed
                point:(NSPoint)point;
// Declares the dragged data's types. Returns NO if the system raised an exception.
- (BOOL)fillPasteboard;
- (void)pasteboard:(NSPasteboard*)pasteboard provideDataForType:(NSString*)type;
- (void)setCurrentDragOperation:(cef_drag_operations_mask_t)operation;
- (void)resetDragDrop;
// Removes this view's promised types from the pasteboard.
- (void)withdrawPromises;

@end
