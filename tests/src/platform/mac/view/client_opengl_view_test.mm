// The real view, in a window and with OpenGL on a display of the test's own.
#include "osr/view/osr_view.h"
#include "src/platform/mac/fakes/system_fake.h"
#include "src/platform/mac/view/view_fixture.h"

#pragma clang diagnostic ignored "-Wdeprecated-declarations"

// Overrides the check whether windows post changes of their scale.
@interface TellingWindows : NSObject
@end

@implementation TellingWindows
+ (BOOL)windowsTellOfBackingProperties {
  return YES;
}
@end

@interface RecordingCursor : NSObject
@end

@implementation RecordingCursor
- (void)set {
  zantrio::mac_test::recordCall("set cursor");
}
@end

namespace zantrio::mac_test {
namespace {

const NSPoint kPoint = NSMakePoint(10, 80);  // (10, 20) from the left upper corner

class ClientOpenGLViewMac : public ViewTest {
 protected:
  static NSNotification* scaleChange(NSWindow* window, double from) {
    return [NSNotification notificationWithName:NSWindowDidChangeBackingPropertiesNotification
                                         object:window
                                       userInfo:@{
                                         NSBackingPropertyOldScaleFactorKey : @(from)
                                       }];
  }

  static void postScaleChange(NSWindow* window) {
    [[NSNotificationCenter defaultCenter] postNotification:scaleChange(window, 1)];
  }
};

TEST_F(ClientOpenGLViewMac, SendsMouseEventsFromTheUpperLeftCorner) {
  [view_ mouseDown:mouse(NSLeftMouseDown, kPoint, NSShiftKeyMask, 2)];
  EXPECT_TRUE([view_ was_last_mouse_down_on_view]);
  [view_ setWas_last_mouse_down_on_view:false];
  EXPECT_FALSE([view_ was_last_mouse_down_on_view]);
  [view_ mouseUp:mouse(NSLeftMouseUp, kPoint, NSCommandKeyMask)];
  [view_ otherMouseDown:mouse(NSOtherMouseDown, kPoint, NSControlKeyMask)];
  [view_ otherMouseUp:mouse(NSOtherMouseUp, kPoint, NSAlternateKeyMask)];
  [view_ rightMouseDown:mouse(NSRightMouseDown, kPoint, NSAlphaShiftKeyMask)];
  [view_ rightMouseUp:mouse(NSRightMouseUp, kPoint)];
  EXPECT_EQ(sent(),
            (Lines{"click 10,20 flags 18 left down x2", "click 10,20 flags 144 left up x1",
                   "click 10,20 flags 36 middle down x1", "click 10,20 flags 40 middle up x1",
                   "click 10,20 flags 65 right down x1", "click 10,20 flags 64 right up x1"}));
  [view_ mouseMoved:mouse(NSMouseMoved, kPoint)];
  [view_ mouseDragged:mouse(NSLeftMouseDragged, kPoint)];
  [view_ rightMouseDragged:mouse(NSRightMouseDragged, kPoint)];
  [view_ otherMouseDragged:mouse(NSOtherMouseDragged, kPoint)];
  [view_ mouseEntered:crossing(NSMouseEntered, kPoint)];
  [view_ mouseExited:crossing(NSMouseExited, kPoint)];
  EXPECT_EQ(sent(), (Lines{"move 10,20 flags 0", "move 10,20 flags 16", "move 10,20 flags 64",
                           "move 10,20 flags 32", "move 10,20 flags 0", "move out 10,20 flags 0"}));
}

TEST_F(ClientOpenGLViewMac, ScrollsByPointsOrByLines) {
  [view_ scrollWheel:gesture(NSEventPhaseNone, kPoint, 7)];
  NSEvent* const wheel = [NSEvent mouseEventWithType:NSScrollWheel
                                            location:kPoint
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:0
                                             context:nil
                                         eventNumber:0
                                          clickCount:0
                                            pressure:0
                                        buttonNumber:0
                                              deltaX:1
                                              deltaY:-2
                                              deltaZ:0];
  [view_ scrollWheel:wheel];
  EXPECT_EQ(sent(), (Lines{"wheel 10,20 flags 0 by 0,7", "wheel 10,20 flags 0 by 40,-80"}));
  EXPECT_EQ(calls(), Lines{});
}

TEST_F(ClientOpenGLViewMac, MonitorsAGestureUntilItsEndOutsideTheView) {
  [view_ sendScrollWheelEvet:gesture(NSEventPhaseBegan, kPoint, 9)];
  EXPECT_EQ(calls(), Lines{});
  EXPECT_EQ(sent(), Lines{"wheel 10,20 flags 0 by 0,9"});
  [view_ scrollWheel:gesture(NSEventPhaseBegan, kPoint, 1)];
  EXPECT_EQ(calls(), Lines{"add monitor"});
  EXPECT_EQ(appKit().monitored, NSScrollWheelMask);

  NSEvent* const changed = gesture(NSEventPhaseChanged, kPoint, 3);
  EXPECT_EQ(appKit().monitor(changed), changed);
  NSEvent* const ended = gesture(NSEventPhaseEnded, NSMakePoint(-50, 0), 4);
  EXPECT_EQ(appKit().monitor(ended), ended);
  EXPECT_EQ(sent(), (Lines{"wheel 10,20 flags 0 by 0,1", "wheel -50,100 flags 0 by 0,4"}));
  EXPECT_EQ(calls(), (Lines{"add monitor", "remove monitor"}));

  [view_ scrollWheel:gesture(NSEventPhaseBegan, kPoint, 5)];
  appKit().monitor(gesture(NSEventPhaseCancelled, kPoint, 6));
  EXPECT_EQ(appKit().monitor, nil);
  // This gesture is still running when the view is destroyed.
  [view_ scrollWheel:gesture(NSEventPhaseBegan, kPoint, 7)];
}

TEST_F(ClientOpenGLViewMac, SendsKeysCharactersAndModifiers) {
  [view_ keyDown:key(NSKeyDown, 83, @"A", NSShiftKeyMask)];
  [view_ keyUp:key(NSKeyUp, 0, @"A", NSShiftKeyMask)];
  [view_ flagsChanged:key(NSFlagsChanged, 56, @"", NSShiftKeyMask)];
  [view_ flagsChanged:key(NSFlagsChanged, 56, @"")];
  EXPECT_EQ(sent(), (Lines{"raw down 0/83 types 65 flags 514", "char 0/83 types 65 flags 514",
                           "up 0/0 types 65 flags 2", "raw down 0/56 types 0 flags 2",
                           "up 0/56 types 0 flags 0"}));
}

TEST_F(ClientOpenGLViewMac, RunsTheMenusEditCommandsInTheFocusedFrame) {
  for (const char* name : {"undo:", "redo:", "cut:", "copy:", "paste:", "delete:", "selectAll:"}) {
    [view_ performSelector:sel_registerName(name) withObject:nil];
  }
  EXPECT_EQ(browser_->frame->edits,
            (Lines{"undo", "redo", "cut", "copy", "paste", "delete", "select all"}));
}

TEST_F(ClientOpenGLViewMac, HasTheWindowsScaleAndReportsOnlyChanges) {
  appKit().scale = 2;
  EXPECT_EQ([view_ getDeviceScaleFactor], 2);
  EXPECT_EQ(osrView().convertRectToBacking({1, 2, 3, 4}), CefRect(2, 4, 6, 8));
  EXPECT_EQ(osrView().convertRectFromBacking({2, 4, 6, 8}), CefRect(1, 2, 3, 4));
  EXPECT_TRUE(appKit().bestResolution);
  for (const double old : {2.0, 1.0}) {
    [view_ windowDidChangeBackingProperties:scaleChange(window_, old)];
  }
  EXPECT_EQ(sent(), Lines{"screen info"});
}

TEST_F(ClientOpenGLViewMac, ObservesItsWindowsScaleUntilTheHandlerIsDestroyed) {
  const ClassMethodSwap telling([ClientOpenGLView class], [TellingWindows class],
                                @selector(windowsTellOfBackingProperties));
  appKit().scale = 2;
  [window_ setContentView:[[[NSView alloc] initWithFrame:NSZeroRect] autorelease]];
  [window_ setContentView:view_];
  sent();
  postScaleChange(window_);
  EXPECT_EQ(sent(), Lines{"screen info"});
  client::OSRWindow::Create([view_ osrView]);  // destroyed at once
  postScaleChange(window_);
  EXPECT_EQ(sent(), Lines{});
}

TEST_F(ClientOpenGLViewMac, InvalidatesThePageOnlyWhenDrawnInALiveResize) {
  [view_ drawRect:[view_ bounds]];
  EXPECT_EQ(sent(), Lines{});
  appKit().resizing = true;
  [view_ drawRect:[view_ bounds]];
  EXPECT_EQ(sent(), Lines{"invalidate view"});
  [view_ setFrameSize:NSMakeSize(150, 80)];
  EXPECT_EQ(sent(), Lines{"resized"});
}

TEST_F(ClientOpenGLViewMac, AnswersTheEnginesQueriesAboutTheScreen) {
  CefRect rect;
  handler()->GetViewRect(browser_, rect);
  EXPECT_EQ(rect, CefRect(0, 0, 200, 100));
  int x = 0;
  int y = 0;
  ASSERT_TRUE(handler()->GetScreenPoint(browser_, 10, 20, x, y));
  const NSPoint corner = [window_ frame].origin;
  EXPECT_EQ(CefPoint(x, y),
            CefPoint(static_cast<int>(corner.x) + 10, static_cast<int>(corner.y) + 80));
  appKit().scale = 2;
  appKit().grayScreen = true;
  CefScreenInfo info;
  ASSERT_TRUE(handler()->GetScreenInfo(browser_, info));
  EXPECT_EQ(info.device_scale_factor, 2);
  EXPECT_EQ(info.depth, 24);
  EXPECT_EQ(info.depth_per_component, 8);
  EXPECT_TRUE(info.is_monochrome);
  EXPECT_EQ(CefRect(info.rect), CefRect(0, 0, 800, 600));
}

TEST_F(ClientOpenGLViewMac, LetsNoExceptionOfTheClientReachTheSystem) {
  [view_ setBrowserProvider:[]() -> CefRefPtr<CefBrowser> { throw std::runtime_error("browser"); }];
  NSEvent* const press = mouse(NSLeftMouseDown, kPoint);
  NSEvent* const typed = key(NSKeyDown, 0, @"a");
  [view_ mouseDown:press];
  [view_ mouseMoved:press];
  [view_ scrollWheel:gesture(NSEventPhaseNone, kPoint, 1)];
  [view_ shortCircuitScrollWheelEvent:gesture(NSEventPhaseEnded, kPoint, 1)];
  [view_ keyDown:typed];
  [view_ keyUp:typed];
  [view_ flagsChanged:key(NSFlagsChanged, 56, @"")];
  [view_ performSelector:@selector(copy:) withObject:nil];
  [view_ drawRect:[view_ bounds]];
  [view_ setFrameSize:NSMakeSize(50, 50)];
  [view_ windowDidChangeBackingProperties:scaleChange(window_, 1)];
  [view_ becomeFirstResponder];
  [view_ resignFirstResponder];
  EXPECT_FALSE([[view_ windowDelegate] windowShouldClose:window_]);
}

TEST_F(ClientOpenGLViewMac, ForwardsFocusAndCursor) {
  EXPECT_TRUE([view_ acceptsFirstResponder]);
  EXPECT_TRUE([view_ becomeFirstResponder]);
  EXPECT_TRUE(host_->focused);
  EXPECT_TRUE([view_ resignFirstResponder]);
  EXPECT_FALSE(host_->focused);
  RecordingCursor* const cursor = [[[RecordingCursor alloc] init] autorelease];
  EXPECT_TRUE(handler()->OnCursorChange(browser_, (CefCursorHandle)cursor, CT_HAND, {}));
  EXPECT_EQ(calls(), Lines{"set cursor"});
}

class OffScreenWindowMac : public MacTest {
 protected:
  static std::shared_ptr<client::OsrView> open(const CefRefPtr<CefBrowser>& browser) {
    std::string error;
    auto view = client::createOffScreenView(
        {"Zantrio", {40, 20, 300, 200}, false, false, [browser] { return browser; }}, error);
    EXPECT_TRUE(view) << error;
    return view;
  }

  static ClientOpenGLView* shownBy(const client::OsrView& view) {
    return (ClientOpenGLView*)client::windowOf(view);
  }
};

TEST_F(OffScreenWindowMac, ClosesOnlyWithItsBrowserAndThenLeavesNothing) {
  const CefRefPtr<zantrio::test::FakeBrowser> browser = new zantrio::test::FakeBrowser;
  std::weak_ptr<client::OsrView> weak;
  CefRefPtr<client::RenderHandler> handler;
  @autoreleasepool {
    const auto view = open(browser);
    weak = view;
    handler = client::OSRWindow::Create(view)->GetRenderHandler();
    NSWindow* const window = [shownBy(*view) window];
    EXPECT_EQ(textOf([window title]), "Zantrio");
    EXPECT_FALSE(
        [[window delegate] respondsToSelector:@selector(windowDidChangeBackingProperties:)])
        << "AppKit would report the scale a second time";
    EXPECT_EQ([window firstResponder], shownBy(*view));
    EXPECT_EQ(view->bounds().width, 300);
    EXPECT_EQ(view->bounds().height, 200);
    [window performClose:nil];
    EXPECT_EQ(browser->host->closeCalls, std::vector<bool>{false});
    EXPECT_TRUE([window isVisible]);
  }
  ASSERT_FALSE(weak.expired());
  @autoreleasepool {
    handler->OnBeforeClose(browser);
  }
  EXPECT_TRUE(weak.expired());
  CefScreenInfo info;
  EXPECT_FALSE(handler->GetScreenInfo(browser, info));
}

}  // namespace
}  // namespace zantrio::mac_test
