// A browser that is drawn off screen.
#pragma once

#include <QCursor>
#include <QPointer>
#include <QTimer>
#include <QWebEngineView>
#include <functional>
#include <memory>

#include "browser/browser_impl.h"
#include "browser/off_screen.h"
#include "osr/off_screen_drag.h"
#include "osr/off_screen_input.h"
#include "osr/off_screen_text_input.h"
#include "osr/painted_widget.h"

namespace cef_qt {

// Keeps the browser's view off the screen, at the size that the client's render handler gives, and
// passes frames, pop-ups and cursors to that handler. Ownership: the browser's window, which
// outlives neither its view nor its browser. UI thread. A paint that is asked for
// (`invalidate`) comes inside the call.
class OffScreenBrowser final : public QObject, public OffScreenPart {
  Q_OBJECT

 public:
  OffScreenBrowser(Browser* browser, QWebEngineView* view, int framesPerSecond);
  ~OffScreenBrowser() override;

  // The browser whose view it is; null when that is on the screen.
  static OffScreenBrowser* of(const QObject* view);

  void wasResized();
  void wasHidden(bool hidden);
  void screenInfoChanged();
  void invalidate(cef_paint_element_type_t type);
  void setFocus(bool focus) override;
  bool isDragRunning() const override { return drag_.isRunning(); }

  OffScreenInput& input() { return input_; }
  OffScreenDrag& drag() { return drag_; }
  OffScreenTextInput& textInput() { return textInput_; }

  Browser* browser() const { return browser_; }
  QWebEngineView* view() const { return view_; }
  // Null while the browser closes, or without a render handler.
  CefRefPtr<CefRenderHandler> handler() const;
  // Pixels of the view's own coordinates for each view point of the client.
  double scale() const { return scale_; }
  QQuickWidget* page() const;
  // The open pop-up under a point of the view, in the view's own coordinates; null when none.
  QQuickWidget* popupAt(const QPoint& point) const;
  // Looks for changes of the cursor from now on, most often right after the call.
  void watchCursor();
  // The pointer has left the view.
  void ignoreCursor();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // Watches the page's widget, which changes with the process that draws it.
  void attach();
  void reportCursor();
  void popupShown(QQuickWidget* popup);
  void tellPopup();
  void popupHidden();
  // Does the work when the page has done what it was asked before, or is busy for long.
  void whenPageAnswers(std::function<void()> next);
  void windowShown(QWidget* window);
  CefRect popupRect() const;
  // What the client shows the browser in; null when that is none of Qt's.
  QWidget* clientsWindow() const;
  void paint(cef_paint_element_type_t type, const FrameBuffer& frame);
  bool ownsPopup(const QWidget* widget) const;

  Browser* const browser_;
  QWebEngineView* const view_;
  const int framesPerSecond_;
  double scale_ = 1;
  bool focused_ = false;
  // Chromium sets the cursor some time after a movement, and Qt tells nobody.
  QTimer cursorTimer_;
  int cursorChecks_ = 0;  // that are still to be made quickly
  QCursor cursor_;        // that the client was told of
  OffScreenInput input_;
  OffScreenDrag drag_;
  OffScreenTextInput textInput_;
  std::unique_ptr<PaintedWidget> page_;
  std::unique_ptr<PaintedWidget> popup_;
  bool popupTold_ = false;  // the client knows of popup_
};

}  // namespace cef_qt
