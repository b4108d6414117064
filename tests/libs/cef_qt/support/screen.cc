#include "support/screen.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "support/framework.h"

namespace cef_test {
namespace {

CefRefPtr<TestClient> clientOf(const CefRefPtr<Screen>& screen) {
  CefRefPtr<TestClient> client(new TestClient);
  client->renderHandler = screen;
  client->displayHandler = screen;
  return client;
}

CefMouseEvent at(int x, int y, uint32_t flags) {
  CefMouseEvent event;
  event.x = x;
  event.y = y;
  event.modifiers = flags;
  return event;
}

}  // namespace

void Screen::OnPaint(CefRefPtr<CefBrowser> /*browser*/, PaintElementType type,
                     const RectList& dirtyRects, const void* buffer, int width, int height) {
  if (type == PET_POPUP) {
    EXPECT_TRUE(popupShown) << "painted before it has a place";
    popupPaints.push_back({type, dirtyRects, width, height});
    return;
  }
  paints.push_back({type, dirtyRects, width, height});
  if (pictureSize.width != width || pictureSize.height != height) {
    pictureSize.Set(width, height);
    picture_.assign(static_cast<std::size_t>(width * height), 0);
  }
  for (const CefRect& rect : dirtyRects) {
    for (int y = rect.y; y < rect.y + rect.height; ++y) {
      const int from = y * width + rect.x;
      std::memcpy(picture_.data() + from, static_cast<const uint32_t*>(buffer) + from,
                  static_cast<std::size_t>(rect.width) * sizeof(uint32_t));
    }
  }
}

std::string Screen::colorAt(int x, int y) const {
  if (x >= pictureSize.width || y >= pictureSize.height) {
    return {};
  }
  char text[16];
  std::snprintf(text, sizeof(text), "%06x",
                picture_[static_cast<std::size_t>(y * pictureSize.width + x)] & 0xFFFFFFU);
  return text;
}

bool Screen::becomes(int x, int y, const std::string& color) const {
  return runUntil([&] { return colorAt(x, y) == color; });
}

OffScreenPage::OffScreenPage(const std::string& html, CefRefPtr<Screen> screen)
    : screen_(std::move(screen)), page_(html, clientOf(screen_)) {
  host()->SetFocus(true);
}

void OffScreenPage::move(int x, int y, uint32_t flags) {
  host()->SendMouseMoveEvent(at(x, y, flags), false);
}

void OffScreenPage::press(int x, int y, int clickCount) {
  host()->SendMouseClickEvent(at(x, y, EVENTFLAG_LEFT_MOUSE_BUTTON), MBT_LEFT, false, clickCount);
}

void OffScreenPage::release(int x, int y, int clickCount) {
  host()->SendMouseClickEvent(at(x, y, EVENTFLAG_LEFT_MOUSE_BUTTON), MBT_LEFT, true, clickCount);
}

void OffScreenPage::click(int x, int y, int clickCount) {
  move(x, y);
  press(x, y, clickCount);
  release(x, y, clickCount);
}

void OffScreenPage::type(char16_t character, int windowsKeyCode) {
  CefKeyEvent event;
  event.windows_key_code = windowsKeyCode;
  event.type = KEYEVENT_RAWKEYDOWN;
  host()->SendKeyEvent(event);
  if (character != 0) {
    event.type = KEYEVENT_CHAR;
    event.character = character;
    host()->SendKeyEvent(event);
  }
  event.type = KEYEVENT_KEYUP;
  host()->SendKeyEvent(event);
}

}  // namespace cef_test
