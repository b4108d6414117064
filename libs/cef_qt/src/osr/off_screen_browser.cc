#include "osr/off_screen_browser.h"

#include <QApplication>
#include <QEvent>
#include <QQuickWidget>
#include <QTimer>
#include <QWebEnginePage>
#include <QWebEngineScript>
#include <QWindow>
#include <algorithm>
#include <memory>
#include <utility>

#include "browser/browser_window.h"
#include "include/cef_render_handler.h"
#include "threads/post_for.h"

namespace cef_qt {
namespace {

constexpr int kDefaultRate = 30;
constexpr int kMaxRate = 60;
// The longest wait for a busy page.
constexpr int kPageTimeoutMs = 300;

QList<OffScreenBrowser*>& all() {
  static QList<OffScreenBrowser*> browsers;
  return browsers;
}

int frameRateOf(int requested) {
  return requested <= 0 ? kDefaultRate : std::min(requested, kMaxRate);
}

}  // namespace

OffScreenBrowser::OffScreenBrowser(Browser* browser, QWebEngineView* view, int framesPerSecond)
    : browser_(browser),
      view_(view),
      framesPerSecond_(frameRateOf(framesPerSecond)),
      cursor_(*this),
      input_(*this),
      drag_(*this),
      textInput_(*this) {
  all().append(this);
  view_->setAttribute(Qt::WA_DontShowOnScreen);
  // A tool window is never the parent of dialogs.
  view_->setWindowFlags(Qt::Tool | Qt::FramelessWindowHint);
  view_->setAttribute(Qt::WA_ShowWithoutActivating);
  // Chromium reads the view's position only once, so the view never moves.
  view_->move(0, 0);
  view_->winId();  // creates the native window
  QApplication::instance()->installEventFilter(this);
  connect(view_->page(), &QWebEnginePage::loadStarted, this, &OffScreenBrowser::attach);
  connect(view_->page(), &QWebEnginePage::loadFinished, this, &OffScreenBrowser::attach);
  screenInfoChanged();
}

OffScreenBrowser::~OffScreenBrowser() {
  all().removeOne(this);
  drag_.cancel();
}

OffScreenBrowser* OffScreenBrowser::of(const QObject* view) {
  const auto found = std::find_if(all().begin(), all().end(), [view](const auto* candidate) {
    return candidate->view_ == view || candidate->page() == view;
  });
  return found == all().end() ? nullptr : *found;
}

CefRefPtr<CefRenderHandler> OffScreenBrowser::handler() const {
  const CefRefPtr<CefClient> client = browser_->client();
  return client ? client->GetRenderHandler() : nullptr;
}

QQuickWidget* OffScreenBrowser::page() const {
  return qobject_cast<QQuickWidget*>(view_->focusProxy());
}

void OffScreenBrowser::attach() {
  QQuickWidget* const current = page();
  if (!current || (page_ && page_->widget() == current)) {
    return;
  }
  page_ =
      std::make_unique<PaintedWidget>(current, framesPerSecond_, [this](const FrameBuffer& frame) {
        paint(PET_VIEW, frame);
        textInput_.report();  // the focused field may have moved
      });
  // Windows that Qt opens over the view, such as suggestions for a field, pass their keys on to the
  // focused widget.
  current->setFocus();
  setFocus(focused_);
}

void OffScreenBrowser::paint(cef_paint_element_type_t type, const FrameBuffer& frame) {
  if (const auto target = handler()) {
    target->OnPaint(browser_, type, frame.dirtyRects(), frame.pixels(), frame.size().width(),
                    frame.size().height());
  }
}

void OffScreenBrowser::wasResized() {
  const auto renderHandler = handler();
  if (!renderHandler) {
    return;
  }
  CefRect rect;
  renderHandler->GetViewRect(browser_, rect);
  const QSize size(qRound(std::max(rect.width, 1) * scale_),
                   qRound(std::max(rect.height, 1) * scale_));
  // Qt resizes no native window that is not on the screen, but Chromium tells the page its size.
  view_->windowHandle()->resize(size);
  view_->resize(size);
}

void OffScreenBrowser::screenInfoChanged() {
  CefScreenInfo info;
  const auto renderHandler = handler();
  if (renderHandler && renderHandler->GetScreenInfo(browser_, info) &&
      info.device_scale_factor > 0) {
    // The widget's pixels already contain Qt's own scale.
    scale_ = info.device_scale_factor / view_->devicePixelRatioF();
  }
  view_->setZoomFactor(scale_);
  wasResized();
}

// Menus and suggestions open at the hidden view and are moved to the client's view.
void OffScreenBrowser::windowShown(QWidget* window) {
  int x = 0;
  int y = 0;
  const auto renderHandler = handler();
  if (renderHandler && renderHandler->GetScreenPoint(browser_, 0, 0, x, y)) {
    window->move(window->pos() + QPoint(x, y) - view_->pos());
  }
}

void OffScreenBrowser::wasHidden(bool hidden) {
  view_->setVisible(!hidden);
}

void OffScreenBrowser::invalidate(cef_paint_element_type_t type) {
  PaintedWidget* const element = type == PET_VIEW ? page_.get() : popup_.get();
  if (element) {
    element->paintAll();
  }
}

QWidget* OffScreenBrowser::clientWindow() const {
  return QWidget::find(browser_->window() ? browser_->window()->handle() : 0);
}

void OffScreenBrowser::setFocus(bool focus) {
  focused_ = focus;
  input_.setFocus(focus);
  QWidget* const parent = clientWindow();
  if (focus && parent && !parent->isActiveWindow()) {
    parent->activateWindow();
  }
}

bool OffScreenBrowser::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::ChildAdded:
      if (watched == view_) {
        postFor(this, TID_UI, [this] { attach(); });
      }
      break;
    case QEvent::Show:
      if (auto* const shown = qobject_cast<QQuickWidget*>(watched); shown && ownsPopup(shown)) {
        popupShown(shown);
      } else if (auto* const over = qobject_cast<QWidget*>(watched);
                 over && over->windowType() == Qt::Popup && over->parentWidget() == view_) {
        windowShown(over);
      }
      break;
    case QEvent::ToolTipChange:
      if (QWidget* const shown = watched == view_ ? clientWindow() : nullptr) {
        shown->setToolTip(view_->toolTip());
      }
      break;
    case QEvent::Hide:
    case QEvent::Close:
      if (popup_ && watched == popup_->widget()) {
        popupHidden();
      }
      break;
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}

// A pop-up window has no parent, so it is attributed to the page that received input last.
bool OffScreenBrowser::ownsPopup(const QWidget* widget) const {
  return widget->isWindow() && widget != view_ && OffScreenInput::latest() == &input_;
}

void OffScreenBrowser::popupShown(QQuickWidget* popup) {
  if (popup_ && popup_->widget() == popup) {
    return;
  }
  if (popup_) {
    popupHidden();  // Qt destroys the old window later
  }
  popup->setAttribute(Qt::WA_DontShowOnScreen);
  // Qt sends all input of the application to a window of type Popup; this one gets it from the
  // client.
  popup->overrideWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint);
  connect(popup, &QObject::destroyed, this, [this, popup] {
    if (popup_ && (!popup_->widget() || popup_->widget() == popup)) {
      popupHidden();
    }
  });
  popup_ =
      std::make_unique<PaintedWidget>(popup, framesPerSecond_, [this](const FrameBuffer& frame) {
        if (popupReported_) {
          paint(PET_POPUP, frame);
        }
      });
  // On a press on an open list, the page closes the list, opens it again and closes it at once. The
  // client is told only of a list that is still open after the page has handled the press.
  afterPendingPageWork([this, popup, shown = QPointer<QObject>(popup)] {
    if (popup_ && shown && popup_->widget() == popup) {
      reportPopup();
    }
  });
}

void OffScreenBrowser::reportPopup() {
  if (const auto renderHandler = handler()) {
    popupReported_ = true;
    renderHandler->OnPopupShow(browser_, true);
    renderHandler->OnPopupSize(browser_, popupRect());
    // Frames were held back until the pop-up had a position.
    invalidate(PET_POPUP);
  }
}

void OffScreenBrowser::popupHidden() {
  popup_.reset();
  if (!std::exchange(popupReported_, false)) {
    return;
  }
  // From a task, out of Chromium's callback. A pop-up that opens meanwhile is reported later.
  postFor(this, TID_UI, [this] {
    if (const auto renderHandler = handler()) {
      renderHandler->OnPopupShow(browser_, false);
    }
  });
}

void OffScreenBrowser::afterPendingPageWork(std::function<void()> work) {
  const auto once = [self = QPointer<OffScreenBrowser>(this),
                     work = std::make_shared<std::function<void()>>(std::move(work))] {
    if (const auto pending = std::exchange(*work, nullptr); pending && self) {
      pending();
    }
  };
  // From a task, out of Chromium's callback.
  postFor(this, TID_UI, [this, once] {
    view_->page()->runJavaScript(QStringLiteral("0"), QWebEngineScript::ApplicationWorld,
                                 [once](const QVariant&) { once(); });
    QTimer::singleShot(kPageTimeoutMs, this, once);
  });
}

CefRect OffScreenBrowser::popupRect() const {
  const QWidget* const popup = popup_->widget();
  const QPoint corner = popup->pos() - view_->mapToGlobal(QPoint(0, 0));
  return {qRound(corner.x() / scale_), qRound(corner.y() / scale_), qRound(popup->width() / scale_),
          qRound(popup->height() / scale_)};
}

QQuickWidget* OffScreenBrowser::popupAt(const QPoint& point) const {
  QQuickWidget* const popup = popup_ ? popup_->widget() : nullptr;
  if (!popup || !popupReported_ || !popup->isVisible()) {
    return nullptr;
  }
  return popup->geometry().contains(view_->mapToGlobal(point)) ? popup : nullptr;
}

}  // namespace cef_qt
