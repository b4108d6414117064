#include "osr/off_screen_browser_host.h"

#include "base/qt_text.h"
#include "browser/browser_window.h"
#include "osr/off_screen_browser.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

// Runs the work inside the call on the UI thread and from a task on other threads, unless the
// browser is closed.
void withOffScreen(const CefRefPtr<Browser>& browser, std::function<void(OffScreenBrowser&)> work) {
  if (!CefCurrentlyOn(TID_UI)) {
    postTo(TID_UI, [browser, work = std::move(work)] { withOffScreen(browser, work); });
  } else if (browser->window()) {
    work(static_cast<OffScreenBrowser&>(*browser->window()->offScreen()));
  }
}

}  // namespace

void OffScreenBrowserHost::WasResized() {
  withOffScreen(browser(), [](auto& target) { target.wasResized(); });
}

void OffScreenBrowserHost::WasHidden(bool hidden) {
  withOffScreen(browser(), [hidden](auto& target) { target.wasHidden(hidden); });
}

void OffScreenBrowserHost::NotifyScreenInfoChanged() {
  withOffScreen(browser(), [](auto& target) { target.screenInfoChanged(); });
}

void OffScreenBrowserHost::Invalidate(PaintElementType type) {
  withOffScreen(browser(), [type](auto& target) { target.invalidate(type); });
}

void OffScreenBrowserHost::SendKeyEvent(const CefKeyEvent& event) {
  withOffScreen(browser(), [event](auto& target) { target.input().key(event); });
}

void OffScreenBrowserHost::SendMouseClickEvent(const CefMouseEvent& event, MouseButtonType type,
                                               bool mouseUp, int clickCount) {
  withOffScreen(browser(),
                [=](auto& target) { target.input().click(event, type, mouseUp, clickCount); });
}

void OffScreenBrowserHost::SendMouseMoveEvent(const CefMouseEvent& event, bool mouseLeave) {
  withOffScreen(browser(), [=](auto& target) { target.input().move(event, mouseLeave); });
}

void OffScreenBrowserHost::SendMouseWheelEvent(const CefMouseEvent& event, int deltaX, int deltaY) {
  withOffScreen(browser(), [=](auto& target) { target.input().wheel(event, deltaX, deltaY); });
}

void OffScreenBrowserHost::ImeSetComposition(const CefString& text,
                                             const std::vector<CefCompositionUnderline>& underlines,
                                             const CefRange& replacement_range,
                                             const CefRange& selection_range) {
  withOffScreen(browser(), [=](auto& target) {
    target.textInput().compose(toQt(text), underlines, replacement_range, selection_range);
  });
}

// Qt always moves the caret behind the text.
void OffScreenBrowserHost::ImeCommitText(const CefString& text, const CefRange& replacement_range,
                                         int /*relative_cursor_pos*/) {
  withOffScreen(browser(),
                [=](auto& target) { target.textInput().commit(toQt(text), replacement_range); });
}

void OffScreenBrowserHost::ImeFinishComposingText(bool /*keep_selection*/) {
  withOffScreen(browser(), [](auto& target) { target.textInput().finish(); });
}

void OffScreenBrowserHost::ImeCancelComposition() {
  withOffScreen(browser(), [](auto& target) { target.textInput().cancel(); });
}

void OffScreenBrowserHost::DragTargetDragEnter(CefRefPtr<CefDragData> data,
                                               const CefMouseEvent& event,
                                               DragOperationsMask allowed) {
  withOffScreen(browser(), [=](auto& target) { target.drag().enter(data, event, allowed); });
}

void OffScreenBrowserHost::DragTargetDragOver(const CefMouseEvent& event,
                                              DragOperationsMask allowed) {
  withOffScreen(browser(), [=](auto& target) { target.drag().over(event, allowed); });
}

void OffScreenBrowserHost::DragTargetDragLeave() {
  withOffScreen(browser(), [](auto& target) { target.drag().leave(); });
}

void OffScreenBrowserHost::DragTargetDrop(const CefMouseEvent& event) {
  withOffScreen(browser(), [event](auto& target) { target.drag().drop(event); });
}

void OffScreenBrowserHost::DragSourceEndedAt(int /*x*/, int /*y*/, DragOperationsMask op) {
  withOffScreen(browser(), [op](auto& target) { target.drag().endedAt(op); });
}

void OffScreenBrowserHost::DragSourceSystemDragEnded() {
  withOffScreen(browser(), [](auto& target) { target.drag().systemDragEnded(); });
}

void enableOffScreenBrowsers() {
  static const OffScreenFactory kFactory{
      [](Browser* browser, QWebEngineView* view,
         int framesPerSecond) -> std::unique_ptr<OffScreenPart> {
        return std::make_unique<OffScreenBrowser>(browser, view, framesPerSecond);
      },
      [](CefRefPtr<Browser> browser) -> CefRefPtr<CefBrowserHost> {
        return new OffScreenBrowserHost(std::move(browser));
      }};
  setOffScreenFactory(&kFactory);
}

}  // namespace cef_qt
