// Input decisions that are the same on every system.
#include <gmock/gmock.h>

#include <set>

#include "osr/input/click_counter.h"
#include "osr/input/mouse_input.h"
#include "osr/input/scroll_gesture.h"
#include "osr/input/system_event.h"
#include "osr/view/view_scale.h"
#include "src/osr/renderer/egl_context.h"
#include "src/osr/view/fake_osr_view.h"

namespace client::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

SystemEvent eventOf(EventKind kind, OsrPoint point = {}, uint32_t modifiers = 0) {
  SystemEvent event;
  event.kind = kind;
  event.point = point;
  event.modifiers = modifiers;
  event.clickCount = 1;
  return event;
}

SystemEvent keyOf(EventKind kind, int code, uint32_t modifiers = 0) {
  SystemEvent event = eventOf(kind, {}, modifiers);
  event.keyCode = code;
  return event;
}

TEST(EventFlags, MapModifiersAndTheEventsButton) {
  using K = EventKind;
  struct Case {
    std::vector<EventKind> kinds;
    uint32_t modifiers;
    uint32_t flags;
  };
  const Case cases[] = {{{K::kMoved}, kCapsLock, 1},
                        {{K::kMoved}, kShift, 2},
                        {{K::kMoved}, kControl, 4},
                        {{K::kMoved}, kOption, 8},
                        {{K::kMoved}, kCommand, 128},
                        {{K::kMoved}, kFunction, 0},
                        {{K::kLeftDown, K::kLeftUp, K::kLeftDragged}, 0, 16},
                        {{K::kOtherDown, K::kOtherUp, K::kOtherDragged}, 0, 32},
                        {{K::kRightDown, K::kRightUp, K::kRightDragged}, kShift | kCommand, 194},
                        // Only key events come from a key pad.
                        {{K::kKeyUp}, kNumericPad, 512},
                        {{K::kScroll}, kNumericPad, 0}};
  for (const Case& each : cases) {
    for (const EventKind kind : each.kinds) {
      EXPECT_EQ(getModifiersForEvent(eventOf(kind, {}, each.modifiers)), each.flags)
          << static_cast<int>(kind) << " with " << each.modifiers;
    }
  }
}

TEST(EventFlags, ReconstructWhatAKeyTypesWithoutControl) {
  const auto without = [](uint32_t modifiers, int windowsKeyCode, const char16_t* typed) {
    SystemEvent event = eventOf(EventKind::kKeyDown, {}, modifiers);
    event.windowsKeyCode = windowsKeyCode;
    event.characters = typed;
    return charactersWithoutControl(event);
  };
  EXPECT_EQ(without(kControl, 'C', u"\x03"), u"c");
  EXPECT_EQ(without(kControl | kShift, 'C', u"\x03"), u"C");
  EXPECT_EQ(without(kControl, '3', u"\x1b"), u"3");
  EXPECT_EQ(without(kControl | kShift, '3', u"#"), u"#");
  EXPECT_EQ(without(kControl, 0x0D, u"\r"), u"\r");
  EXPECT_EQ(without(kShift, 'C', u"C"), u"C");
}

TEST(EventFlags, RecognizeTheKeyPad) {
  const std::set<int> pad{65, 67, 69, 71, 75, 76, 78, 81, 82, 83, 84, 85, 86, 87, 88, 89, 91, 92};
  for (int code = 0; code < 130; ++code) {
    EXPECT_EQ(isKeyPadEvent(keyOf(EventKind::kKeyDown, code)), pad.count(code) == 1) << code;
    EXPECT_TRUE(isKeyPadEvent(keyOf(EventKind::kKeyDown, code, kNumericPad)));
  }
  EXPECT_FALSE(isKeyPadEvent(eventOf(EventKind::kKeyDown)));
}

TEST(EventFlags, RecognizeAModifierKeysReleaseByItsClearFlag) {
  const std::vector<std::pair<int, uint32_t>> keys{
      {54, kCommand}, {55, kCommand}, {56, kShift},   {60, kShift},   {57, kCapsLock},
      {58, kOption},  {61, kOption},  {59, kControl}, {62, kControl}, {63, kFunction}};
  for (const auto& [code, modifier] : keys) {
    EXPECT_FALSE(isKeyUpEvent(keyOf(EventKind::kFlagsChanged, code, modifier))) << code;
    EXPECT_TRUE(isKeyUpEvent(keyOf(EventKind::kFlagsChanged, code, ~modifier))) << code;
  }
  EXPECT_FALSE(isKeyUpEvent(keyOf(EventKind::kFlagsChanged, 64)));
  EXPECT_TRUE(isKeyUpEvent(keyOf(EventKind::kKeyUp, 0, kShift)));
  EXPECT_FALSE(isKeyUpEvent(keyOf(EventKind::kKeyDown, 54)));
}

// The page is 400 × 200 pixels, the pop-up was moved 20 points left and 10 points up into it.
class MouseInputTest : public testing::Test {
 protected:
  void openPopup() {
    const Pixels page(400, 200, distinct);
    view_.osrRenderer.OnPaint(nullptr, PET_VIEW, {page.rect()}, page.data(), 400, 200);
    view_.osrRenderer.OnPopupSize(nullptr, {340, 120, 100, 100});
  }
  std::vector<std::string> sent(const SystemEvent& event) {
    view_.host->lines.clear();
    mouse_.handle(event);
    return view_.host->lines;
  }

  EglContext context_{400, 200};
  FakeOsrView view_;
  MouseInput mouse_{view_};
  const OsrPoint onPage_{10, 10};
  const OsrPoint onPopup_{160, 60};
};

TEST_F(MouseInputTest, SendsPressesMovesAndWheels) {
  SystemEvent twice = eventOf(EventKind::kLeftDown, {10.9, 20.9}, kShift);
  twice.clickCount = 2;
  EXPECT_THAT(sent(twice), ElementsAre("click 10,20 flags 18 left down x2"));
  EXPECT_THAT(sent(eventOf(EventKind::kOtherUp, onPage_)),
              ElementsAre("click 10,10 flags 32 middle up x1"));
  EXPECT_THAT(sent(eventOf(EventKind::kRightDown, onPage_)),
              ElementsAre("click 10,10 flags 64 right down x1"));
  EXPECT_THAT(sent(eventOf(EventKind::kRightUp, onPage_)),
              ElementsAre("click 10,10 flags 64 right up x1"));
  EXPECT_THAT(sent(eventOf(EventKind::kLeftDragged, onPage_)), ElementsAre("move 10,10 flags 16"));
  EXPECT_THAT(sent(eventOf(EventKind::kEntered, onPage_)), ElementsAre("move 10,10 flags 0"));
  EXPECT_THAT(sent(eventOf(EventKind::kExited, onPage_)), ElementsAre("move out 10,10 flags 0"));
  SystemEvent wheel = eventOf(EventKind::kScroll, onPage_);
  wheel.deltaX = -3;
  wheel.deltaY = 120;
  EXPECT_THAT(sent(wheel), ElementsAre("wheel 10,10 flags 0 by -3,120"));
  wheel.deltaX = -0.5;
  wheel.deltaY = 0.75;
  for (const char* whole : {"0,0", "-1,1", "0,1", "-1,1"}) {
    EXPECT_THAT(sent(wheel), ElementsAre(std::string("wheel 10,10 flags 0 by ") + whole));
  }
}

TEST_F(MouseInputTest, MapsPointsOverADisplacedPopupToItsOriginalPosition) {
  openPopup();
  EXPECT_THAT(sent(eventOf(EventKind::kMoved, onPopup_)), ElementsAre("move 180,70 flags 0"));
  EXPECT_THAT(sent(eventOf(EventKind::kMoved, {150, 50})), ElementsAre("move 170,60 flags 0"));
  EXPECT_THAT(sent(eventOf(EventKind::kMoved, {149.9, 50})), ElementsAre("move 149,50 flags 0"));
  EXPECT_THAT(sent(eventOf(EventKind::kMoved, {200, 50})), ElementsAre("move 200,50 flags 0"));
  EXPECT_THAT(sent(eventOf(EventKind::kMoved, {150, 100})), ElementsAre("move 150,100 flags 0"));
}

TEST_F(MouseInputTest, DropsAReleaseOverADisplacedPopupOfAPressOnThePage) {
  openPopup();
  EXPECT_EQ(sent(eventOf(EventKind::kLeftDown, onPage_)).size(), 1u);
  EXPECT_TRUE(mouse_.wasLastMouseDownOnView());
  EXPECT_THAT(sent(eventOf(EventKind::kLeftUp, onPopup_)), IsEmpty());
  EXPECT_EQ(sent(eventOf(EventKind::kLeftUp, onPage_)).size(), 1u);
  // A press on the pop-up ends there, or on the page.
  EXPECT_EQ(sent(eventOf(EventKind::kLeftDown, onPopup_)).size(), 1u);
  EXPECT_FALSE(mouse_.wasLastMouseDownOnView());
  EXPECT_THAT(sent(eventOf(EventKind::kLeftUp, onPopup_)),
              ElementsAre("click 180,70 flags 16 left up x1"));
  // One that was not moved takes releases of presses on the page.
  view_.osrRenderer.OnPopupSize(nullptr, {300, 100, 100, 100});
  sent(eventOf(EventKind::kLeftDown, onPage_));
  EXPECT_THAT(sent(eventOf(EventKind::kLeftUp, onPopup_)),
              ElementsAre("click 160,60 flags 16 left up x1"));
}

TEST_F(MouseInputTest, RotatesThePageWithTheRightButtonAndShift) {
  EXPECT_THAT(sent(eventOf(EventKind::kRightDown, {50, 50}, kShift)), IsEmpty());
  EXPECT_THAT(sent(eventOf(EventKind::kRightDragged, {60, 45})), IsEmpty());
  EXPECT_EQ(view_.osrRenderer.spinX(), -10);
  EXPECT_EQ(view_.osrRenderer.spinY(), 5);
  EXPECT_THAT(sent(eventOf(EventKind::kRightDragged, {61, 45})), IsEmpty());
  EXPECT_EQ(view_.osrRenderer.spinX(), -11);
  EXPECT_EQ(view_.osrRenderer.spinY(), 5);
  EXPECT_THAT(sent(eventOf(EventKind::kRightUp, {61, 45})), IsEmpty());
  EXPECT_EQ(view_.osrRenderer.spinX(), 0);
  EXPECT_EQ(view_.osrRenderer.spinY(), 0);
  EXPECT_THAT(view_.lines, ElementsAre("redraw", "redraw", "redraw"));
  EXPECT_EQ(sent(eventOf(EventKind::kRightUp, {61, 45})).size(), 1u);
}

TEST(ClickCounter, CountsPressesOfOneButtonThatAreNearInTimeAndPlace) {
  ClickCounter clicks(400, 5);
  EXPECT_EQ(clicks.count(), 0);
  EXPECT_EQ(clicks.pressed({1, {10, 10}, 0}), 1);
  EXPECT_EQ(clicks.pressed({1, {15, 5}, 400}), 2);
  EXPECT_EQ(clicks.pressed({1, {15, 5}, 500}), 3);
  EXPECT_EQ(clicks.pressed({2, {15, 5}, 510}), 1);     // another button
  EXPECT_EQ(clicks.pressed({2, {15, 10.5}, 520}), 1);  // elsewhere
  EXPECT_EQ(clicks.pressed({2, {15, 10.5}, 921}), 1);  // later
  EXPECT_EQ(clicks.count(), 1);
}

TEST(ScrollGesture, MonitorsAGestureFromBeginningToEnd) {
  std::vector<std::string> lines;
  ScrollGesture gesture(
      {[&] { lines.emplace_back("install"); }, [&] { lines.emplace_back("remove"); }},
      [&](const SystemEvent& event) {
        lines.push_back("send " + std::to_string(static_cast<int>(event.phase)));
      });
  SystemEvent event = eventOf(EventKind::kScroll);
  gesture.scrollWheel(event);  // a wheel without phases
  EXPECT_THAT(lines, ElementsAre("send 0"));
  for (const auto end : {ScrollPhase::kEnded, ScrollPhase::kCancelled}) {
    lines.clear();
    event.phase = ScrollPhase::kBegan;
    gesture.scrollWheel(event);
    gesture.shortCircuit(event);
    gesture.scrollWheel(event);  // watched already
    event.phase = ScrollPhase::kChanged;
    gesture.shortCircuit(event);
    event.phase = end;
    gesture.shortCircuit(event);
    EXPECT_THAT(lines, ElementsAre("install", "send 1", "send 1",
                                   "send " + std::to_string(static_cast<int>(end)), "remove"));
    EXPECT_FALSE(gesture.isWatching());
  }
  // An end that the view gets.
  lines.clear();
  event.phase = ScrollPhase::kBegan;
  gesture.scrollWheel(event);
  event.phase = ScrollPhase::kEnded;
  gesture.scrollWheel(event);
  EXPECT_THAT(lines, ElementsAre("install", "send 1", "send 3", "remove"));
}

TEST(ViewScale, PrefersTheBackingScaleAndReportsChanges) {
  EXPECT_EQ(getDeviceScaleFactor(std::nullopt), 1);
  EXPECT_EQ(getDeviceScaleFactor(WindowScale{2.0F, 1.5F}), 2);
  EXPECT_EQ(getDeviceScaleFactor(WindowScale{std::nullopt, 1.5F}), 1.5F);
  FakeOsrView view;
  reportScaleChange(view, 2);
  EXPECT_THAT(view.host->lines, IsEmpty());
  reportScaleChange(view, 1);
  EXPECT_THAT(view.host->lines, ElementsAre("screen info"));
  view.hasBrowser = false;
  reportScaleChange(view, 1);
}

TEST(ViewScale, ConvertsRectanglesBetweenPointsPixelsAndOrigins) {
  EXPECT_EQ(pointsToPixels({3, 5, 10, 20}, 2), CefRect(6, 10, 20, 40));
  EXPECT_EQ(pixelsToPoints({6, 10, 20, 40}, 2), CefRect(3, 5, 10, 20));
  EXPECT_EQ(pointsToPixels({1, 1, 1, 1}, 1.5F), CefRect(1, 1, 2, 2));
  EXPECT_EQ(toTopLeftOrigin({0, 50, 1440, 820}, {0, 0, 1440, 900}), CefRect(0, 30, 1440, 820));
  EXPECT_EQ(toTopLeftOrigin({0, -200, 800, 100}, {0, -300, 800, 600}), CefRect(0, 400, 800, 100));
}

}  // namespace
}  // namespace client::test
