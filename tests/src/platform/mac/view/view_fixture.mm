#include "src/platform/mac/view/view_fixture.h"

using namespace zantrio::mac_test;

@implementation TestView
- (id)initWithFrame:(NSRect)frame
      andTransparency:(BOOL)transparency
    andShowUpdateRect:(BOOL)showUpdateRect {
  ++appKit().liveViews;
  return [super initWithFrame:frame andTransparency:transparency andShowUpdateRect:showUpdateRect];
}

- (void)dealloc {
  --appKit().liveViews;
  [super dealloc];
}

- (void)interpretKeyEvents:(NSArray*)events {
  (void)events;
  if (appKit().inputMethod) {
    appKit().inputMethod();
  }
}

- (BOOL)inLiveResize {
  return appKit().resizing;
}
@end

@implementation TestWindow
- (CGFloat)backingScaleFactor {
  return appKit().scale;
}
@end

namespace zantrio::mac_test {

void ViewTest::SetUp() {
  MacTest::SetUp();
  browser_ = new zantrio::test::FakeBrowser;
  host_ = browser_->host;
  window_ = [[TestWindow alloc] initWithContentRect:NSMakeRect(50, 30, 200, 100)
                                          styleMask:0
                                            backing:NSBackingStoreBuffered
                                              defer:NO];
  [window_ setReleasedWhenClosed:NO];
  view_ = [[TestView alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)
                          andTransparency:NO
                        andShowUpdateRect:NO];
  ASSERT_NE(view_, nil);
  [window_ setContentView:view_];
  [window_ orderFront:nil];
  [view_ setBrowserProvider:[browser = browser_] { return browser; }];
  handler_ = client::OSRWindow::Create([view_ osrView])->GetRenderHandler();
  sent();
}

void ViewTest::TearDown() {
  // A drag waiting for the application's loop retains the view.
  [NSObject cancelPreviousPerformRequestsWithTarget:view_];
  // The X server requires that the view is destroyed before its window.
  @autoreleasepool {
    [window_ setContentView:[[[NSView alloc] initWithFrame:NSZeroRect] autorelease]];
    [view_ release];
  }
  [window_ close];
  [window_ release];
  MacTest::TearDown();
  EXPECT_EQ(appKit().liveViews, 0) << "views that nothing released";
  EXPECT_EQ(appKit().trackingAreas, 0);
  EXPECT_EQ(appKit().monitor, nil);
}

Lines ViewTest::sent() {
  return std::exchange(host_->lines, {});
}

NSEvent* ViewTest::mouse(NSEventType type, NSPoint point, NSUInteger flags, int clicks) {
  return [NSEvent mouseEventWithType:type
                            location:point
                       modifierFlags:flags
                           timestamp:0
                        windowNumber:0
                             context:nil
                         eventNumber:0
                          clickCount:clicks
                            pressure:1];
}

NSEvent* ViewTest::crossing(NSEventType type, NSPoint point) {
  return [NSEvent enterExitEventWithType:type
                                location:point
                           modifierFlags:0
                               timestamp:0
                            windowNumber:0
                                 context:nil
                             eventNumber:0
                          trackingNumber:0
                                userData:nullptr];
}

NSEvent* ViewTest::key(NSEventType type, unsigned short code, NSString* characters,
                       NSUInteger flags) {
  return [NSEvent keyEventWithType:type
                          location:NSZeroPoint
                     modifierFlags:flags
                         timestamp:0
                      windowNumber:0
                           context:nil
                        characters:characters
       charactersIgnoringModifiers:[characters lowercaseString]
                         isARepeat:NO
                           keyCode:code];
}

GestureEvent* ViewTest::gesture(NSEventPhase phase, NSPoint point, CGFloat deltaY) {
  GestureEvent* const event = [[[GestureEvent alloc] init] autorelease];
  event->_phase = phase;
  event->_location = point;
  event->_deltaY = deltaY;
  return event;
}

}  // namespace zantrio::mac_test
