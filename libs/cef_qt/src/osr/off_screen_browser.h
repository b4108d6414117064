// The off-screen part of a browser.
#pragma once

#include <QPointer>
#include <QWebEngineView>
#include <functional>
#include <memory>

#include "browser/browser_impl.h"
#include "browser/off_screen.h"
#include "osr/off_screen_cursor.h"
#include "osr/off_screen_drag.h"
#include "osr/off_screen_input.h"
#include "osr/off_screen_text_input.h"
#include "osr/painted_widget.h"

namespace cef_qt {

// Keeps the browser's view off the screen, at the size that the client's render handler gives, and
// passes frames and pop-ups to that handler. Lengths are pixels of the view unless they come from
// the client, whose view points are scaled by scale(). Owned by the browser's window. UI thread.
class OffScreenBrowser final : public QObject, public OffScreenPart {
  Q_OBJECT

 public:
  OffScreenBrowser(Browser* browser, QWebEngineView* view, int framesPerSecond);
  ~OffScreenBrowser() override;

  // The off-screen browser of a view or of its page's widget; null for other objects.
  static OffScreenBrowser* of(const QObject* view);

  void wasResized();
  void wasHidden(bool hidden);
  void screenInfoChanged();
  // Calls OnPaint inside the call.
  void invalidate(cef_paint_element_type_t type);
  void setFocus(bool focus) override;
  bool isDragRunning() const override { return drag_.isRunning(); }

  OffScreenCursor& cursor() { return cursor_; }
  OffScreenInput& input() { return input_; }
  OffScreenDrag& drag() { return drag_; }
  OffScreenTextInput& textInput() { return textInput_; }

  Browser* browser() const { return browser_; }
  QWebEngineView* view() const { return view_; }
  // Null while the browser closes or if the client has none.
  CefRefPtr<CefRenderHandler> handler() const;
  // Pixels of the view for each view point of the client.
  double scale() const { return scale_; }
  // The widget that shows the page; null until there is one.
  QQuickWidget* page() const;
  // The open pop-up; null if there is none.
  QQuickWidget* popup() const { return popup_ ? popup_->widget() : nullptr; }
  // The open pop-up under a pixel of the view; null if there is none.
  QQuickWidget* popupAt(const QPoint& point) const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // Watches the page's widget, which changes with the render process.
  void attach();
  void popupShown(QQuickWidget* popup);
  void reportPopup();
  void popupHidden();
  // Runs the work once the page has handled its earlier input, or after a timeout.
  void afterPendingPageWork(std::function<void()> work);
  void windowShown(QWidget* window);
  CefRect popupRect() const;
  // The client's window around the browser; null if it is not a Qt window of this process.
  QWidget* clientWindow() const;
  void paint(cef_paint_element_type_t type, const FrameBuffer& frame);
  bool ownsPopup(const QWidget* widget) const;

  Browser* const browser_;
  QWebEngineView* const view_;
  const int framesPerSecond_;
  double scale_ = 1;
  bool focused_ = false;
  OffScreenCursor cursor_;
  OffScreenInput input_;
  OffScreenDrag drag_;
  OffScreenTextInput textInput_;
  std::unique_ptr<PaintedWidget> page_;
  std::unique_ptr<PaintedWidget> popup_;
  bool popupReported_ = false;  // to the client
};

}  // namespace cef_qt
