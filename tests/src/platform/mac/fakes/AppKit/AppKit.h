// GNUstep's AppKit, and the declarations that the client uses and GNUstep lacks.
#pragma once
#pragma GCC system_header

#include_next <AppKit/AppKit.h>

@interface NSView (LackingParts)
- (void)addTrackingArea:(NSTrackingArea*)area;
- (void)removeTrackingArea:(NSTrackingArea*)area;
- (void)setWantsBestResolutionOpenGLSurface:(BOOL)flag;
- (NSRect)convertRectToBacking:(NSRect)rect;
- (NSRect)convertRectFromBacking:(NSRect)rect;
- (NSTextInputContext*)inputContext;
@end

@interface NSEvent (LackingParts)
- (BOOL)hasPreciseScrollingDeltas;
- (CGFloat)scrollingDeltaX;
- (CGFloat)scrollingDeltaY;
+ (id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                   handler:(NSEvent* (^)(NSEvent* event))handler;
+ (void)removeMonitor:(id)monitor;
@end

@interface NSScreen (LackingParts)
- (NSColorSpace*)colorSpace;
@end

extern NSString* const NSWindowDidChangeBackingPropertiesNotification;
extern NSString* const NSBackingPropertyOldScaleFactorKey;
