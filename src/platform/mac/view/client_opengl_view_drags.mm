#include "app/log/guarded_call.h"
#include "bridge/platform_exceptions.h"
#include "osr/input/drag_out.h"
#include "osr/input/system_event.h"
#include "platform/mac/base/system_text.h"
#include "platform/mac/view/client_opengl_view.h"
#include "platform/mac/view/client_opengl_view_parts.h"
#include "platform/mac/view/drag_pasteboard.h"
#include "platform/mac/view/system_event.h"

// The drag pasteboard, its types and drags of an image are what all systems have.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

using client::OsrPoint;
using zantrio::callCatchingPlatformExceptions;
using zantrio::guardedCall;

namespace {

cef_drag_operations_mask_t toBrowserOperations(NSDragOperation operations) {
  return static_cast<cef_drag_operations_mask_t>(static_cast<unsigned int>(operations));
}

CefMouseEvent recordOf(id<NSDraggingInfo> drag, NSView* view) {
  client::SystemEvent event;
  event.modifiers = client::toSystemModifiers([NSEvent modifierFlags]);
  return client::mouseEventAt(client::toViewPoint([drag draggingLocation], view),
                              client::getModifiersForEvent(event));
}

// Returns false if a C++ or system exception ended `body`.
bool callGuarded(const char* operation, const std::function<void()>& body) {
  bool ran = false;
  guardedCall(operation, [&] { ran = callCatchingPlatformExceptions(body); });
  return ran;
}

// The image at the pointer.
NSImage* dragImage() {
  constexpr CGFloat kSide = 16;
  NSImage* const image = [[[NSImage alloc] initWithSize:NSMakeSize(kSide, kSide)] autorelease];
  [image lockFocus];
  [[NSColor selectedControlColor] set];
  NSRectFill(NSMakeRect(0, 0, kSide, kSide));
  [image unlockFocus];
  return image;
}

}  // namespace

@implementation ClientOpenGLView (Drags)

// Drags out of the view

- (BOOL)startDragging:(CefRefPtr<CefDragData>)data
          allowed_ops:(cef_drag_operations_mask_t)allowed
                point:(NSPoint)point {
  if (!data || [self window] == nil) {
    return NO;
  }
  [self resetDragDrop];
  parts_->drags.begin(data, allowed);
  if (![self fillPasteboard]) {
    [self resetDragDrop];
    return NO;
  }
  const NSPoint upright = NSMakePoint(point.x, NSHeight([self bounds]) - point.y);
  [self performSelector:@selector(runDragFrom:)
             withObject:[NSValue valueWithPoint:upright]
             afterDelay:0];
  return YES;
}

- (BOOL)fillPasteboard {
  return callGuarded("fillPasteboard", [self] {
    CefDragData& data = *parts_->drags.currentDragData();
    pasteboard_ = [[NSPasteboard pasteboardWithName:NSDragPboard] retain];
    if (client::kindsOf(data).fileContents) {
      fileUTI_ = [client::fileTypeOf(data) retain];
    }
    client::declareKinds(pasteboard_, data, fileUTI_, self);
    promisedChange_ = [pasteboard_ changeCount];
  });
}

// `point`: in view coordinates. Returns after draggingSession:endedAtPoint:operation:.
- (void)runDragFrom:(NSValue*)point {
  const NSPoint start = [point pointValue];
  const bool ran = callGuarded("runDragFrom", [self, start] {
    NSWindow* const window = [self window];
    NSEvent* const press = [NSEvent mouseEventWithType:NSLeftMouseDragged
                                              location:[self convertPoint:start toView:nil]
                                         modifierFlags:0
                                             timestamp:[[NSProcessInfo processInfo] systemUptime]
                                          windowNumber:[window windowNumber]
                                               context:nil
                                           eventNumber:0
                                            clickCount:1
                                              pressure:1];
    [self dragImage:dragImage()
                 at:start
             offset:NSZeroSize
              event:press
         pasteboard:pasteboard_
             source:self
          slideBack:YES];
  });
  if (!ran) {
    [self endDragAt:[self convertPoint:start toView:nil] operation:NSDragOperationNone];
  }
}

- (NSDragOperation)draggingSession:(NSDraggingSession*)session
    sourceOperationMaskForDraggingContext:(NSDraggingContext)context {
  (void)session;
  (void)context;
  return parts_->drags.currentAllowedOps();
}

- (void)draggingSession:(NSDraggingSession*)session
           endedAtPoint:(NSPoint)screenPoint
              operation:(NSDragOperation)operation {
  (void)session;
  const NSRect onScreen = NSMakeRect(screenPoint.x, screenPoint.y, 0, 0);
  [self endDragAt:[[self window] convertRectFromScreen:onScreen].origin operation:operation];
}

- (void)endDragAt:(NSPoint)pointInWindow operation:(NSDragOperation)operation {
  guardedCall("endDragAt", [&] {
    parts_->drags.endedAt(client::toViewPoint(pointInWindow, self),
                          static_cast<unsigned int>(operation));
  });
  [self resetDragDrop];
}

- (void)resetDragDrop {
  parts_->drags.resetDragDrop();
  [pasteboard_ release];
  pasteboard_ = nil;
  [fileUTI_ release];
  fileUTI_ = nil;
}

- (void)withdrawPromises {
  callGuarded("withdrawPromises", [self] {
    NSPasteboard* const pasteboard = [NSPasteboard pasteboardWithName:NSDragPboard];
    if (promisedChange_ != 0 && [pasteboard changeCount] == promisedChange_) {
      [pasteboard declareTypes:[NSArray array] owner:nil];
    }
  });
  [self resetDragDrop];
}

- (void)pasteboard:(NSPasteboard*)pasteboard provideDataForType:(NSString*)type {
  const CefRefPtr<CefDragData> data = parts_->drags.currentDragData();
  if (data) {
    callGuarded("provideDataForType",
                [&] { client::provideKind(pasteboard, type, *data, fileUTI_); });
  }
}

// Returns the written file's name, if any.
- (NSArray*)namesOfPromisedFilesDroppedAtDestination:(NSURL*)folder {
  NSArray* names = [NSArray array];
  const CefRefPtr<CefDragData> data = parts_->drags.currentDragData();
  const auto path = [folder isFileURL] ? zantrio::toUtf8([folder path]) : std::nullopt;
  if (!data || !path) {
    return names;
  }
  guardedCall("namesOfPromisedFilesDroppedAtDestination", [&] {
    const auto name = client::writePromisedFile(*data, *path);
    if (NSString* const known = name ? [NSString stringWithUTF8String:name->c_str()] : nil) {
      names = [NSArray arrayWithObject:known];
    }
  });
  return names;
}

// Drags into the view

- (NSDragOperation)draggingEntered:(id<NSDraggingInfo>)drag {
  client::DroppedItems items;
  // The data of a drag out of this view is known; its pasteboard would only ask this view.
  if (!parts_->drags.currentDragData()) {
    callGuarded("draggingEntered",
                [&] { items = client::droppedItemsOf([drag draggingPasteboard]); });
  }
  guardedCall("draggingEntered", [&] {
    parts_->drags.entered(recordOf(drag, self), items,
                          toBrowserOperations([drag draggingSourceOperationMask]));
  });
  return parts_->drags.currentDragOp();
}

- (NSDragOperation)draggingUpdated:(id<NSDraggingInfo>)drag {
  guardedCall("draggingUpdated", [&] {
    parts_->drags.moved(recordOf(drag, self),
                        toBrowserOperations([drag draggingSourceOperationMask]));
  });
  return parts_->drags.currentDragOp();
}

- (void)draggingExited:(id<NSDraggingInfo>)drag {
  (void)drag;
  guardedCall("draggingExited", [self] { parts_->drags.exited(); });
}

- (BOOL)prepareForDragOperation:(id<NSDraggingInfo>)drag {
  (void)drag;
  return YES;
}

- (BOOL)performDragOperation:(id<NSDraggingInfo>)drag {
  guardedCall("performDragOperation", [&] { parts_->drags.performed(recordOf(drag, self)); });
  return YES;
}

- (void)setCurrentDragOperation:(cef_drag_operations_mask_t)operation {
  parts_->drags.setCurrentDragOp(operation);
}

@end
