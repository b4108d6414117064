#pragma once

#import <AppKit/AppKit.h>

#include <memory>

#include "osr/view/off_screen_view.h"

@class OffScreenWindowDelegate;

namespace client {
class ViewParts;
}

// Shows an off-screen browser and feeds it input: translates the system's events for the portable
// parts, and does what they ask of the system. It is the source of drags that begin in the page and
// takes those that come over it.
//
// Ownership: as of any view. Thread: main, which is the framework's UI thread. Errors: a C++
// exception is logged under the operation's name, an exception of the system's pasteboard or drag
// goes to the system's log; neither reaches the system.
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

// Nil when the system cannot draw with OpenGL.
- (id)initWithFrame:(NSRect)frame
      andTransparency:(BOOL)transparency
    andShowUpdateRect:(BOOL)showUpdateRect;

- (void)setBrowserProvider:(client::BrowserProvider)provider;
// Null before the browser exists and once it is closed.
- (CefRefPtr<CefBrowserHost>)browserHost;
// For the window around the view, which asks it before it closes.
- (id<NSWindowDelegate>)windowDelegate;
// The browser is closed; closes the window, too.
- (void)forgetBrowser;

// The view as the portable code sees it, to be held weakly: it serves as long as the view lives.
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
// Only sends; `scrollWheel:` sees to a gesture's end first.
- (void)sendScrollWheelEvet:(NSEvent*)event;
// A scroll event anywhere in the application while a gesture runs that began in the view.
- (void)shortCircuitScrollWheelEvent:(NSEvent*)event;
- (void)installEndWheelMonitor;
- (void)removeEndWheelMonitor;

@end

// Takes text of the system's input methods, dead keys among them. Ranges count UTF-16 units.
@interface ClientOpenGLView (Text) <NSTextInputClient>
@end

@interface ClientOpenGLView (Drags) <NSDraggingSource>

// `point` is in the view, from its left upper corner. False when the drag cannot be started. The
// drag runs a loop of the system's, which is entered from the application's own.
- (BOOL)startDragging:(CefRefPtr<CefDragData>)data
          allowed_ops:(cef_drag_operations_mask_t)allowed
                point:(NSPoint)point;
// Offers the dragged data's kinds. False when the system raised an exception.
- (BOOL)fillPasteboard;
- (void)pasteboard:(NSPasteboard*)pasteboard provideDataForType:(NSString*)type;
- (void)setCurrentDragOperation:(cef_drag_operations_mask_t)operation;
- (void)resetDragDrop;
// Leaves no promise on the pasteboard that this view would have to keep.
- (void)withdrawPromises;

@end
