#include "osr/off_screen_browser.h"

#include <QApplication>
#include <QEvent>
#include <QQuickItem>
#include <QQuickWindow>
#include <QWebEnginePage>
#include <QWebEngineScript>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "browser/browser_window.h"
#include "include/cef_render_handler.h"
#include "osr/cursors.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

constexpr int kDefaultRate = 30;
constexpr int kHighestRate = 60;
constexpr int kCursorMs = 30;
constexpr int kIdleCursorMs = 200;
constexpr int kCursorChecks = 20;
// A page that is busy for longer is not waited for.
constexpr int kLongestAnswerMs = 300;

QList<OffScreenBrowser*>& all() {
  static QList<OffScreenBrowser*> browsers;
  return browsers;
}

// The cursor of the item that the page is drawn in; other items have none.
QCursor cursorBelow(const QQuickItem& item) {
  QCursor cursor = item.cursor();
  for (const QQuickItem* const child : item.childItems()) {
    if (cursor.shape() == Qt::ArrowCursor) {
      cursor = cursorBelow(*child);
    }
  }
  return cursor;
}

int rateOf(int wanted) {
  return wanted <= 0 ? kDefaultRate : std::min(wanted, kHighestRate);
}

}  // namespace

OffScreenBrowser::OffScreenBrowser(Browser* browser, QWebEngineView* view, int framesPerSecond)
    : browser_(browser),
      view_(view),
      framesPerSecond_(rateOf(framesPerSecond)),
      input_(*this),
      drag_(*this),
      textInput_(*this) {
  all().append(this);
  view_->setAttribute(Qt::WA_DontShowOnScreen);
  // Not a window that dialogs would open over, and without a frame around the page.
  view_->setWindowFlags(Qt::Tool | Qt::FramelessWindowHint);
  view_->setAttribute(Qt::WA_ShowWithoutActivating);
  // Chromium learns of a place once only, so the view keeps it.
  view_->move(0, 0);
  view_->winId();  // makes its window
  QApplication::instance()->installEventFilter(this);
  connect(view_->page(), &QWebEnginePage::loadStarted, this, &OffScreenBrowser::attach);
  connect(view_->page(), &QWebEnginePage::loadFinished, this, &OffScreenBrowser::attach);
  connect(&cursorTimer_, &QTimer::timeout, this, &OffScreenBrowser::reportCursor);
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
        textInput_.report();  // the field may have moved
      });
  // Qt's own windows over the view, as suggestions for a field, pass their keys on to what has the
  // focus in it.
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
  const auto asked = handler();
  if (!asked) {
    return;
  }
  CefRect rect;
  asked->GetViewRect(browser_, rect);
  view_->resize(qRound(std::max(rect.width, 1) * scale_),
                qRound(std::max(rect.height, 1) * scale_));
}

void OffScreenBrowser::screenInfoChanged() {
  CefScreenInfo info;
  const auto asked = handler();
  if (asked && asked->GetScreenInfo(browser_, info) && info.device_scale_factor > 0) {
    // Qt's own part of the scale is in the widget's pixels already.
    scale_ = info.device_scale_factor / view_->devicePixelRatioF();
  }
  view_->setZoomFactor(scale_);
  wasResized();
}

// Menus and suggestions open where the hidden view is; the client's view is elsewhere.
void OffScreenBrowser::windowShown(QWidget* window) {
  int x = 0;
  int y = 0;
  const auto asked = handler();
  if (asked && asked->GetScreenPoint(browser_, 0, 0, x, y)) {
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

QWidget* OffScreenBrowser::clientsWindow() const {
  return QWidget::find(browser_->window() ? browser_->window()->handle() : 0);
}

void OffScreenBrowser::setFocus(bool focus) {
  focused_ = focus;
  input_.setFocus(focus);
  QWidget* const parent = clientsWindow();
  if (focus && parent && !parent->isActiveWindow()) {
    parent->activateWindow();
  }
}

bool OffScreenBrowser::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::ChildAdded:
      if (watched == view_) {
        postTo(TID_UI, [self = QPointer<OffScreenBrowser>(this)] {
          if (self) {
            self->attach();
          }
        });
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
      if (QWidget* const shown = watched == view_ ? clientsWindow() : nullptr) {
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

void OffScreenBrowser::watchCursor() {
  cursorChecks_ = kCursorChecks;
  if (!cursorTimer_.isActive() || cursorTimer_.interval() != kCursorMs) {
    cursorTimer_.start(kCursorMs);
  }
}

void OffScreenBrowser::ignoreCursor() {
  cursorTimer_.stop();
}

void OffScreenBrowser::reportCursor() {
  if (--cursorChecks_ <= 0) {
    cursorTimer_.setInterval(kIdleCursorMs);  // a page may change it without input
  }
  const QQuickWidget* const shown = page();
  const QCursor now = shown ? cursorBelow(*shown->quickWindow()->contentItem()) : QCursor();
  if (std::exchange(cursor_, now) == now) {
    return;
  }
  const CefRefPtr<CefClient> client = browser_->client();
  if (const auto display = client ? client->GetDisplayHandler() : nullptr) {
    const QImage picture = pictureOf(cursor_);
    display->OnCursorChange(browser_, 0, cursorTypeOf(cursor_.shape()),
                            cursorInfoOf(cursor_, picture));
  }
}

// A pop-up is a window of its own that knows no parent: it belongs to the page that was used last.
bool OffScreenBrowser::ownsPopup(const QWidget* widget) const {
  return widget->isWindow() && widget != view_ && OffScreenInput::lastUsed() == &input_;
}

void OffScreenBrowser::popupShown(QQuickWidget* popup) {
  if (popup_ && popup_->widget() == popup) {
    return;
  }
  if (popup_) {
    popupHidden();  // its window goes later
  }
  popup->setAttribute(Qt::WA_DontShowOnScreen);
  // Qt hands all input of the application to an open pop-up; this one gets its input from us.
  popup->overrideWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint);
  connect(popup, &QObject::destroyed, this, [this, popup] {
    if (popup_ && (!popup_->widget() || popup_->widget() == popup)) {
      popupHidden();
    }
  });
  popup_ =
      std::make_unique<PaintedWidget>(popup, framesPerSecond_, [this](const FrameBuffer& frame) {
        if (popupTold_) {
          paint(PET_POPUP, frame);
        }
      });
  // A press on a list that is open makes the page close it, open it again, and close that one at
  // once: the client is told of a list that is still there when the page has done its work.
  whenPageAnswers([this, popup, shown = QPointer<QObject>(popup)] {
    if (popup_ && shown && popup_->widget() == popup) {
      tellPopup();
    }
  });
}

void OffScreenBrowser::tellPopup() {
  if (const auto told = handler()) {
    popupTold_ = true;
    told->OnPopupShow(browser_, true);
    told->OnPopupSize(browser_, popupRect());
    // What was drawn before had no place yet.
    invalidate(PET_POPUP);
  }
}

void OffScreenBrowser::popupHidden() {
  popup_.reset();
  if (!std::exchange(popupTold_, false)) {
    return;
  }
  // Out of Chromium's callback; also when another one is open by then, which is told after this.
  postTo(TID_UI, [self = QPointer<OffScreenBrowser>(this)] {
    if (const auto told = self ? self->handler() : nullptr) {
      told->OnPopupShow(self->browser_, false);
    }
  });
}

void OffScreenBrowser::whenPageAnswers(std::function<void()> next) {
  const auto once = [self = QPointer<OffScreenBrowser>(this),
                     next = std::make_shared<std::function<void()>>(std::move(next))] {
    if (const auto work = std::exchange(*next, nullptr); work && self) {
      work();
    }
  };
  // Out of Chromium's callback.
  postTo(TID_UI, [self = QPointer<OffScreenBrowser>(this), once] {
    if (self) {
      self->view_->page()->runJavaScript(QStringLiteral("0"), QWebEngineScript::ApplicationWorld,
                                         [once](const QVariant&) { once(); });
      QTimer::singleShot(kLongestAnswerMs, self, once);
    }
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
  if (!popup || !popupTold_ || !popup->isVisible()) {
    return nullptr;
  }
  return popup->geometry().contains(view_->mapToGlobal(point)) ? popup : nullptr;
}

}  // namespace cef_qt
