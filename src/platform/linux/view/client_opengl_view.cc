#include "platform/linux/view/client_opengl_view.h"

#include <QApplication>
#include <QCloseEvent>
#include <QPainter>
#include <QScreen>
#include <QStyleHints>
#include <QWindow>
#include <algorithm>

#include "osr/view/view_scale.h"

namespace client {
namespace {

CefRect toRect(const QRect& rect) {
  return {rect.x(), rect.y(), rect.width(), rect.height()};
}

QRect toQRect(const CefRect& rect) {
  return {rect.x, rect.y, rect.width, rect.height};
}

}  // namespace

std::shared_ptr<ClientOpenGLView> ClientOpenGLView::open(const OffScreenViewOptions& options,
                                                         std::string& error) {
  std::unique_ptr<EglCanvas> canvas = EglCanvas::create(error);
  if (!canvas) {
    return nullptr;
  }
  std::shared_ptr<ClientOpenGLView> view(new ClientOpenGLView(options, std::move(canvas)));
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

void ClientOpenGLView::browserClosed() {
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
  // A depth of 32 includes 8 bits without a colour.
  constexpr int kComponents = 3;
  constexpr int kMaxBits = 8;
  return OsrScreen{shown->depth(), std::min(shown->depth() / kComponents, kMaxBits), false,
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
    renderer_->invalidateSurface();
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
  // During a resize the page must be painted again.
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
  // The page and the client can refuse; the window closes with the browser.
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    event->ignore();
    target->CloseBrowser(false);
  }
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
