// What a browser's host does for an off-screen browser.
#include "base/qt_text.h"
#include "browser/browser_host.h"
#include "browser/browser_window.h"
#include "osr/off_screen_browser.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

// Does the work now on the UI thread, later on others; not for browsers on the screen.
void withOffScreen(const CefRefPtr<Browser>& browser, std::function<void(OffScreenBrowser&)> work) {
  if (!CefCurrentlyOn(TID_UI)) {
    postTo(TID_UI, [browser, work = std::move(work)] { withOffScreen(browser, work); });
  } else if (OffScreenBrowser* const target =
                 browser->window() ? browser->window()->offScreen() : nullptr) {
    work(*target);
  }
}

}  // namespace

void BrowserHost::WasResized() {
  withOffScreen(browser_, [](auto& target) { target.wasResized(); });
}

void BrowserHost::WasHidden(bool hidden) {
  withOffScreen(browser_, [hidden](auto& target) { target.wasHidden(hidden); });
}

void BrowserHost::NotifyScreenInfoChanged() {
  withOffScreen(browser_, [](auto& target) { target.screenInfoChanged(); });
}

void BrowserHost::Invalidate(PaintElementType type) {
  withOffScreen(browser_, [type](auto& target) { target.invalidate(type); });
}

void BrowserHost::SendKeyEvent(const CefKeyEvent& event) {
  withOffScreen(browser_, [event](auto& target) { target.input().key(event); });
}

void BrowserHost::SendMouseClickEvent(const CefMouseEvent& event, MouseButtonType type,
                                      bool mouseUp, int clickCount) {
  withOffScreen(browser_,
                [=](auto& target) { target.input().click(event, type, mouseUp, clickCount); });
}

void BrowserHost::SendMouseMoveEvent(const CefMouseEvent& event, bool mouseLeave) {
  withOffScreen(browser_, [=](auto& target) { target.input().move(event, mouseLeave); });
}

void BrowserHost::SendMouseWheelEvent(const CefMouseEvent& event, int deltaX, int deltaY) {
  withOffScreen(browser_, [=](auto& target) { target.input().wheel(event, deltaX, deltaY); });
}

void BrowserHost::ImeSetComposition(const CefString& text,
                                    const std::vector<CefCompositionUnderline>& underlines,
                                    const CefRange& replacement_range,
                                    const CefRange& selection_range) {
  withOffScreen(browser_, [=](auto& target) {
    target.textInput().compose(toQt(text), underlines, replacement_range, selection_range);
  });
}

// Qt leaves the caret behind the text.
void BrowserHost::ImeCommitText(const CefString& text, const CefRange& replacement_range,
                                int /*relative_cursor_pos*/) {
  withOffScreen(browser_,
                [=](auto& target) { target.textInput().commit(toQt(text), replacement_range); });
}

void BrowserHost::ImeFinishComposingText(bool /*keep_selection*/) {
  withOffScreen(browser_, [](auto& target) { target.textInput().finish(); });
}

void BrowserHost::ImeCancelComposition() {
  withOffScreen(browser_, [](auto& target) { target.textInput().cancel(); });
}

void BrowserHost::DragTargetDragEnter(CefRefPtr<CefDragData> data, const CefMouseEvent& event,
                                      DragOperationsMask allowed) {
  withOffScreen(browser_, [=](auto& target) { target.drag().enter(data, event, allowed); });
}

void BrowserHost::DragTargetDragOver(const CefMouseEvent& event, DragOperationsMask allowed) {
  withOffScreen(browser_, [=](auto& target) { target.drag().over(event, allowed); });
}

void BrowserHost::DragTargetDragLeave() {
  withOffScreen(browser_, [](auto& target) { target.drag().leave(); });
}

void BrowserHost::DragTargetDrop(const CefMouseEvent& event) {
  withOffScreen(browser_, [event](auto& target) { target.drag().drop(event); });
}

void BrowserHost::DragSourceEndedAt(int /*x*/, int /*y*/, DragOperationsMask op) {
  withOffScreen(browser_, [op](auto& target) { target.drag().endedAt(op); });
}

void BrowserHost::DragSourceSystemDragEnded() {
  withOffScreen(browser_, [](auto& target) { target.drag().systemDragEnded(); });
}

}  // namespace cef_qt
