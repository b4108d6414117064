#include "src/platform/mac/fakes/appkit_fake.h"

#include <Block.h>

#include "src/platform/mac/fakes/calls.h"

namespace zantrio::mac_test {

AppKitRecord& appKit() {
  static AppKitRecord fake;
  return fake;
}

}  // namespace zantrio::mac_test

using namespace zantrio::mac_test;

NSString* const NSWindowDidChangeBackingPropertiesNotification =
    @"NSWindowDidChangeBackingPropertiesNotification";
NSString* const NSBackingPropertyOldScaleFactorKey = @"NSBackingPropertyOldScaleFactorKey";

// Records the calls of an input method's context.
@interface RecordingInputContext : NSObject
@end

@implementation RecordingInputContext
- (void)discardMarkedText {
  recordCall("discard marked text");
}

- (void)invalidateCharacterCoordinates {
  recordCall("places changed");
}
@end

@implementation NSView (LackingParts)
- (NSTextInputContext*)inputContext {
  return (NSTextInputContext*)[[[RecordingInputContext alloc] init] autorelease];
}

- (void)addTrackingArea:(NSTrackingArea*)area {
  (void)area;
  ++appKit().trackingAreas;
}

- (void)removeTrackingArea:(NSTrackingArea*)area {
  (void)area;
  --appKit().trackingAreas;
}

- (void)setWantsBestResolutionOpenGLSurface:(BOOL)flag {
  appKit().bestResolution = flag;
}

- (NSRect)convertRectToBacking:(NSRect)rect {
  const CGFloat scale = appKit().scale;
  return NSMakeRect(NSMinX(rect) * scale, NSMinY(rect) * scale, NSWidth(rect) * scale,
                    NSHeight(rect) * scale);
}

- (NSRect)convertRectFromBacking:(NSRect)rect {
  const CGFloat scale = appKit().scale;
  return NSMakeRect(NSMinX(rect) / scale, NSMinY(rect) / scale, NSWidth(rect) / scale,
                    NSHeight(rect) / scale);
}
@end

@implementation NSEvent (LackingParts)
- (BOOL)hasPreciseScrollingDeltas {
  return NO;
}

- (CGFloat)scrollingDeltaX {
  return [self deltaX];
}

- (CGFloat)scrollingDeltaY {
  return [self deltaY];
}

+ (id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                   handler:(NSEvent* (^)(NSEvent* event))handler {
  recordCall("add monitor");
  appKit().monitored = mask;
  appKit().monitor = Block_copy(handler);
  return [[[NSObject alloc] init] autorelease];
}

+ (void)removeMonitor:(id)monitor {
  recordCall(monitor != nil ? "remove monitor" : "remove no monitor");
  Block_release(appKit().monitor);
  appKit().monitor = nil;
}
@end

@implementation NSScreen (LackingParts)
- (NSColorSpace*)colorSpace {
  return appKit().grayScreen ? [NSColorSpace genericGrayColorSpace]
                             : [NSColorSpace genericRGBColorSpace];
}
@end

@implementation GestureEvent
- (NSEventType)type {
  return NSScrollWheel;
}

- (NSPoint)locationInWindow {
  return _location;
}

- (NSEventModifierFlags)modifierFlags {
  return 0;
}

- (NSEventPhase)phase {
  return _phase;
}

- (BOOL)hasPreciseScrollingDeltas {
  return YES;
}

- (CGFloat)scrollingDeltaX {
  return 0;
}

- (CGFloat)scrollingDeltaY {
  return _deltaY;
}
@end

@interface ImageDragRecorder : NSObject
@end

@implementation ImageDragRecorder
- (void)dragImage:(NSImage*)image
               at:(NSPoint)start
           offset:(NSSize)offset
            event:(NSEvent*)event
       pasteboard:(NSPasteboard*)pasteboard
           source:(id)source
        slideBack:(BOOL)slideBack {
  (void)offset;
  recordCall(image != nil && source == self && slideBack ? "drag image" : "drag badly");
  appKit().dragStart = start;
  appKit().dragPress = [event locationInWindow];
  appKit().dragPasteboard = pasteboard;
  if (appKit().dragRaises) {
    [NSException raise:NSGenericException format:@"drag"];
  }
}
@end

std::unique_ptr<InstanceMethodSwap> zantrio::mac_test::putImageDragInPlace() {
  return std::make_unique<InstanceMethodSwap>(
      [NSView class], [ImageDragRecorder class],
      @selector(dragImage:at:offset:event:pasteboard:source:slideBack:));
}

@interface RecordingApplication : NSObject {
  id _delegate;
  id _servicesProvider;
}
@end

@implementation RecordingApplication
- (id)init {
  self = [super init];
  _delegate = [[NSObject alloc] init];
  return self;
}

- (void)dealloc {
  [_delegate release];
  [super dealloc];
}

- (id)delegate {
  return _delegate;
}

- (id)servicesProvider {
  return _servicesProvider;
}

- (void)setServicesProvider:(id)provider {
  _servicesProvider = provider;
}

- (void)activateIgnoringOtherApps:(BOOL)flag {
  recordCall(flag ? "activateIgnoringOtherApps:" : "activate beside others");
}

- (void)replyToOpenOrPrint:(NSApplicationDelegateReply)reply {
  recordCall("replyToOpenOrPrint: " + std::to_string(reply));
}
@end

// In place of the system's.
void NSUpdateDynamicServices(void) {
  recordCall("NSUpdateDynamicServices");
}

ApplicationInPlace::ApplicationInPlace() : before_(NSApp) {
  NSApp = (NSApplication*)[[RecordingApplication alloc] init];
}

ApplicationInPlace::~ApplicationInPlace() {
  [NSApp release];
  NSApp = before_;
}
