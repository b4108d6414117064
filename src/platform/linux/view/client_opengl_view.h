#pragma once

#include <QWidget>
#include <memory>

#include "osr/input/click_counter.h"
#include "osr/input/drag_session.h"
#include "osr/input/key_input.h"
#include "osr/input/mouse_input.h"
#include "osr/input/scroll_gesture.h"
#include "osr/input/text_input.h"
#include "osr/renderer/osr_renderer.h"
#include "osr/view/osr_view.h"
#include "platform/linux/view/egl_canvas.h"

namespace client {

// A window that shows an off-screen browser and sends it input: converts Qt's events for the
// portable classes and implements their requests.
//
// Ownership: owns itself from `open` until its browser is closed. Thread: UI. OpenGL renders into
// memory, which is painted as an image: this works on every display, and on none.
class ClientOpenGLView final : public QWidget, public OsrView {
 public:
  static std::shared_ptr<ClientOpenGLView> open(const OffScreenViewOptions& options,
                                                std::string& error);
  ~ClientOpenGLView() override;

  OsrRenderer& renderer() override { return *renderer_; }
  TextInput& textInput() override { return text_; }
  CefRefPtr<CefBrowser> browser() const override;
  void browserClosed() override;
  OsrSize bounds() const override;
  OsrPoint toScreen(const OsrPoint& point) const override;
  std::optional<OsrScreen> screen() const override;
  float deviceScaleFactor() const override;
  CefRect convertRectToBacking(const CefRect& points) const override;
  CefRect convertRectFromBacking(const CefRect& pixels) const override;
  void stopObservingScale() override;
  void redraw() override;
  void makeContextCurrent() override;
  void clearCurrentContext() override;
  void flushContext() override;
  void setCursor(CefCursorHandle cursor, cef_cursor_type_t type,
                 const CefCursorInfo& custom) override;
  void textInputChanged() override;
  bool startDragging(CefRefPtr<CefBrowser> browser, CefRefPtr<CefDragData> data,
                     cef_drag_operations_mask_t allowed, int x, int y) override;
  void setCurrentDragOperation(cef_drag_operations_mask_t operation) override;

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  bool focusNextPrevChild(bool next) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  ClientOpenGLView(const OffScreenViewOptions& options, std::unique_ptr<EglCanvas> canvas);

  CefRefPtr<CefBrowserHost> host() const;
  QSize sizeInPixels() const;
  void handleMouse(const QMouseEvent& event, int clickCount);
  void handleCrossing(EventKind kind, const QPointF& point);
  void setFocusOfBrowser(bool focus);
  void finishComposition();
  void scaleMayHaveChanged();
  void runDrag();

  std::shared_ptr<ClientOpenGLView> self_;
  BrowserProvider browserProvider_;
  std::unique_ptr<EglCanvas> canvas_;
  std::unique_ptr<OsrRenderer> renderer_;
  KeyInput keys_{*this};
  TextInput text_{*this};
  MouseInput mouse_{*this};
  DragSession drags_{*this};
  ScrollGesture scroll_;
  ClickCounter clicks_;
  float scale_ = 1;
  bool resized_ = false;  // since the view was drawn last
  QMetaObject::Connection scaleObserver_;
};

}  // namespace client
