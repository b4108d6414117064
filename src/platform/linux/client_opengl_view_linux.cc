#include "platform/linux/client_opengl_view_linux.h"

#include <QApplication>
#include <QCloseEvent>
#include <QPainter>
#include <QScreen>
#include <QStyleHints>
#include <QWindow>
#include <algorithm>

#include "osr/event_flags.h"
#include "osr/view_scale.h"
#include "platform/linux/drag_linux.h"
#include "platform/linux/system_event_linux.h"

namespace client {
namespace {

CefRect toRect(const QRect& rect) {
  return {rect.x(), rect.y(), rect.width(), rect.height()};
}

QRect toQRect(const CefRect& rect) {
  return {rect.x, rect.y, rect.width, rect.height};
}

CefMouseEvent recordOf(const QDropEvent& event) {
  SystemEvent shared;
  shared.modifiers = toSystemModifiers(event.modifiers());
  return mouseEventAt({event.position().x(), event.position().y()}, getModifiersForEvent(shared));
}

}  // namespace

std::shared_ptr<ClientOpenGLView> ClientOpenGLView::open(const OffScreenViewOptions& options,
                                                         std::string& error) {
  std::unique_ptr<EglCanvas> canvas = EglCanvas::create(error);
  if (!canvas) {
    return nullptr;
  }
  const std::shared_ptr<ClientOpenGLView> view(new ClientOpenGLView(options, std::move(canvas)));
  view->self_ = view;
  view->show();
  view->setFocus();
  return view;
}

ClientOpenGLView::ClientOpenGLView(const OffScreenViewOptions& options,
                                   std::unique_ptr<EglCanvas> canvas)
    : browserProvider_(options.browserProvider),
      canvas_(std::move(canvas)),
      renderer_(std::make_unique<OsrRenderer>(options.transparent, options.showUpdateRect)),
      scroll_({[this] { QApplication::instance()->installEventFilter(this); },
               [this] { QApplication::instance()->removeEventFilter(this); }},
              [this](const SystemEvent& event) { mouse_.handle(event); }),
      clicks_(QGuiApplication::styleHints()->mouseDoubleClickInterval(),
              QGuiApplication::styleHints()->mouseDoubleClickDistance()) {
  renderer_->setSurfaceKeepsDrawing(true);
  setWindowTitle(QString::fromStdString(options.title));
  setGeometry(options.bounds.x, options.bounds.y, options.bounds.width, options.bounds.height);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_InputMethodEnabled);
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setAcceptDrops(true);
}

ClientOpenGLView::~ClientOpenGLView() {
  makeContextCurrent();
  renderer_.reset();
  clearCurrentContext();
}

CefRefPtr<CefBrowser> ClientOpenGLView::browser() const {
  return browserProvider_ ? browserProvider_() : nullptr;
}

CefRefPtr<CefBrowserHost> ClientOpenGLView::host() const {
  const CefRefPtr<CefBrowser> current = browser();
  return current ? current->GetHost() : nullptr;
}

void ClientOpenGLView::forgetBrowser() {
  browserProvider_ = nullptr;
  hide();
  self_.reset();
}

OsrSize ClientOpenGLView::bounds() const {
  return {static_cast<double>(width()), static_cast<double>(height())};
}

OsrPoint ClientOpenGLView::toScreen(const OsrPoint& point) const {
  const QPointF global = mapToGlobal(QPointF(point.x, point.y));
  return {global.x(), global.y()};
}

std::optional<OsrScreen> ClientOpenGLView::screen() const {
  const QScreen* const shown = QWidget::screen();
  if (!windowHandle() || !shown) {
    return std::nullopt;
  }
  // A depth of 32 has bits that are no colour's.
  constexpr int kComponents = 3;
  constexpr int kMostBits = 8;
  return OsrScreen{shown->depth(), std::min(shown->depth() / kComponents, kMostBits), false,
                   toRect(shown->geometry()), toRect(shown->availableGeometry())};
}

float ClientOpenGLView::deviceScaleFactor() const {
  return getDeviceScaleFactor(windowHandle() ? std::optional<WindowScale>(WindowScale{
                                                   static_cast<float>(devicePixelRatioF()), 1})
                                             : std::nullopt);
}

CefRect ClientOpenGLView::convertRectToBacking(const CefRect& points) const {
  return pointsToPixels(points, deviceScaleFactor());
}

CefRect ClientOpenGLView::convertRectFromBacking(const CefRect& pixels) const {
  return pixelsToPoints(pixels, deviceScaleFactor());
}

void ClientOpenGLView::stopObservingScale() {
  disconnect(scaleObserver_);
}

QSize ClientOpenGLView::sizeInPixels() const {
  return size() * devicePixelRatioF();
}

void ClientOpenGLView::redraw() {
  makeContextCurrent();
  renderer_->Render();
  clearCurrentContext();
  flushContext();
}

void ClientOpenGLView::makeContextCurrent() {
  if (canvas_->makeCurrent(sizeInPixels())) {
    renderer_->forgetDrawing();
  }
}

void ClientOpenGLView::clearCurrentContext() {
  canvas_->clearCurrent();
}

void ClientOpenGLView::flushContext() {
  const QSize page(renderer_->viewWidth(), renderer_->viewHeight());
  const QSize shown = page.boundedTo(sizeInPixels());
  const QRect changed = shown == page ? toQRect(renderer_->drawnRect()) : QRect(QPoint(), shown);
  makeContextCurrent();
  const QRect taken = canvas_->takePicture(shown, changed);
  clearCurrentContext();
  const double scale = devicePixelRatioF();
  update(QRectF(QPointF(taken.topLeft()) / scale, QSizeF(taken.size()) / scale).toAlignedRect());
}

void ClientOpenGLView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QImage& picture = canvas_->picture();
  const QSizeF drawn = QSizeF(picture.size()) / devicePixelRatioF();
  if (drawn.width() < width() || drawn.height() < height()) {
    painter.fillRect(rect(), Qt::white);
  }
  painter.drawImage(QRectF(QPointF(), drawn), picture);
  // A window that is being resized wants the page again.
  const CefRefPtr<CefBrowserHost> target = host();
  if (std::exchange(resized_, false) && target) {
    target->Invalidate(PET_VIEW);
  }
}

void ClientOpenGLView::resizeEvent(QResizeEvent* /*event*/) {
  resized_ = true;
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    target->WasResized();
  }
}

void ClientOpenGLView::showEvent(QShowEvent* /*event*/) {
  if (!scaleObserver_ && windowHandle()) {
    scale_ = deviceScaleFactor();
    scaleObserver_ = connect(windowHandle(), &QWindow::screenChanged, this,
                             &ClientOpenGLView::scaleMayHaveChanged);
  }
}

void ClientOpenGLView::scaleMayHaveChanged() {
  reportScaleChange(*this, std::exchange(scale_, deviceScaleFactor()));
}

void ClientOpenGLView::closeEvent(QCloseEvent* event) {
  // The page and the client are asked first; the window goes when they agree.
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    event->ignore();
    target->CloseBrowser(false);
  }
}

void ClientOpenGLView::setCursor(CefCursorHandle /*cursor*/, cef_cursor_type_t type,
                                 const CefCursorInfo& /*custom*/) {
  QWidget::setCursor(toCursorShape(type));
}

bool ClientOpenGLView::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    event->accept();  // keys are the page's
    return true;
  }
  return QWidget::event(event);
}

bool ClientOpenGLView::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Wheel && watched->isWidgetType()) {
    const auto& wheel = *static_cast<QWheelEvent*>(event);
    SystemEvent shared = toSystemEvent(wheel);
    const QPointF here = mapFromGlobal(wheel.globalPosition());  // it may be another widget's event
    shared.point = {here.x(), here.y()};
    scroll_.shortCircuit(shared);
  }
  return QWidget::eventFilter(watched, event);
}

bool ClientOpenGLView::focusNextPrevChild(bool /*next*/) {
  return false;  // Tab is the page's
}

void ClientOpenGLView::handleMouse(const QMouseEvent& event, int clickCount) {
  mouse_.handle(toSystemEvent(event, clickCount));
}

void ClientOpenGLView::mousePressEvent(QMouseEvent* event) {
  clicks_.pressed({static_cast<int>(event->button()),
                   {event->position().x(), event->position().y()},
                   static_cast<int64_t>(event->timestamp())});
  handleMouse(*event, clicks_.count());
}

// To Qt, every other press is one.
void ClientOpenGLView::mouseDoubleClickEvent(QMouseEvent* event) {
  mousePressEvent(event);
}

void ClientOpenGLView::mouseReleaseEvent(QMouseEvent* event) {
  handleMouse(*event, clicks_.count());
}

void ClientOpenGLView::mouseMoveEvent(QMouseEvent* event) {
  handleMouse(*event, 0);
}

void ClientOpenGLView::enterEvent(QEnterEvent* event) {
  handleCrossing(EventKind::kEntered, event->position());
}

void ClientOpenGLView::leaveEvent(QEvent* /*event*/) {
  handleCrossing(EventKind::kExited, mapFromGlobal(QPointF(QCursor::pos())));
}

void ClientOpenGLView::handleCrossing(EventKind kind, const QPointF& point) {
  SystemEvent shared;
  shared.kind = kind;
  shared.modifiers = toSystemModifiers(QGuiApplication::keyboardModifiers());
  shared.point = {point.x(), point.y()};
  mouse_.handle(shared);
}

void ClientOpenGLView::wheelEvent(QWheelEvent* event) {
  scroll_.scrollWheel(toSystemEvent(*event));
  event->accept();
}

void ClientOpenGLView::keyPressEvent(QKeyEvent* event) {
  if (const std::optional<EditCommand> command = editCommandOf(*event)) {
    runEditCommand(*this, *command);
  } else {
    keys_.sendKeyDown(toSystemEvent(*event));
  }
}

void ClientOpenGLView::keyReleaseEvent(QKeyEvent* event) {
  if (!event->isAutoRepeat()) {
    keys_.sendKeyUp(toSystemEvent(*event));
  }
}

void ClientOpenGLView::inputMethodEvent(QInputMethodEvent* event) {
  keys_.sendText(event->commitString().toStdU16String());
  event->accept();
}

void ClientOpenGLView::focusInEvent(QFocusEvent* /*event*/) {
  setFocusOfBrowser(true);
}

void ClientOpenGLView::focusOutEvent(QFocusEvent* event) {
  // A menu takes the keys, and the page still has what is selected.
  if (event->reason() != Qt::PopupFocusReason) {
    setFocusOfBrowser(false);
  }
}

void ClientOpenGLView::setFocusOfBrowser(bool focus) {
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    target->SetFocus(focus);
  }
}

bool ClientOpenGLView::startDragging(CefRefPtr<CefBrowser> /*browser*/,
                                     CefRefPtr<CefDragData> dragged,
                                     cef_drag_operations_mask_t allowed, int /*x*/, int /*y*/) {
  drags_.begin(dragged, allowed);
  // From the loop: the drag runs a loop of its own until it ends.
  QMetaObject::invokeMethod(this, &ClientOpenGLView::runDrag, Qt::QueuedConnection);
  return true;
}

void ClientOpenGLView::runDrag() {
  const CefRefPtr<CefDragData> dragged = drags_.currentDragData();
  if (!dragged) {
    return;
  }
  const std::shared_ptr<ClientOpenGLView> alive = self_;
  const Qt::DropAction action = dragOut(this, *dragged, toDropActions(drags_.currentAllowedOps()));
  const QPointF end = mapFromGlobal(QPointF(QCursor::pos()));
  drags_.endedAt({end.x(), end.y()}, toDragOperations(action));
}

void ClientOpenGLView::setCurrentDragOperation(cef_drag_operations_mask_t operation) {
  drags_.setCurrentDragOp(operation);
}

void ClientOpenGLView::dragEnterEvent(QDragEnterEvent* event) {
  drags_.entered(recordOf(*event), toDroppedItems(*event->mimeData()),
                 toDragOperations(event->possibleActions()));
  // Refusing would end the moves too, and a page may want the drag only at some places.
  event->acceptProposedAction();
}

void ClientOpenGLView::dragMoveEvent(QDragMoveEvent* event) {
  const cef_drag_operations_mask_t operation =
      drags_.moved(recordOf(*event), toDragOperations(event->possibleActions()));
  event->setDropAction(toDropAction(operation));
  event->setAccepted(operation != DRAG_OPERATION_NONE);
}

void ClientOpenGLView::dragLeaveEvent(QDragLeaveEvent* /*event*/) {
  drags_.exited();
}

void ClientOpenGLView::dropEvent(QDropEvent* event) {
  event->setDropAction(toDropAction(drags_.currentDragOp()));
  event->setAccepted(drags_.performed(recordOf(*event)));
}

std::shared_ptr<OsrView> createOffScreenView(const OffScreenViewOptions& options,
                                             std::string& error) {
  return ClientOpenGLView::open(options, error);
}

CefWindowHandle windowOf(const OsrView& view) {
  const auto* const widget = dynamic_cast<const QWidget*>(&view);
  return widget ? static_cast<CefWindowHandle>(widget->winId()) : kNullWindowHandle;
}

}  // namespace client
