#include "browser/view.h"

#include <QCloseEvent>
#include <QDragEnterEvent>

#include "browser/browser_impl.h"
#include "browser/browser_window.h"
#include "browser/drag_conversion.h"
#include "browser/off_screen.h"

namespace cef_qt {

void View::setTitle(const QString& title) {
  setWindowTitle(title);
  if (title.isEmpty()) {
    connect(this, &QWebEngineView::titleChanged, this, &QWidget::setWindowTitle);
  }
}

void View::closeEvent(QCloseEvent* event) {
  if (!browser_) {
    return;
  }
  // The page and the client are asked first; destroy() closes the window.
  event->ignore();
  browser_->close(false);
}

bool View::isOwnDrag(const QDragEnterEvent& event) const {
  BrowserWindow* const window = browser_ ? browser_->window() : nullptr;
  if (window && window->offScreen()) {
    return window->offScreen()->isDragRunning();
  }
  const auto* const source = qobject_cast<const QWidget*>(event.source());
  return source && (source == this || isAncestorOf(source));
}

void View::dragEnterEvent(QDragEnterEvent* event) {
  const CefRefPtr<CefClient> client = browser_ && !isOwnDrag(*event) ? browser_->client() : nullptr;
  const auto handler = client ? client->GetDragHandler() : nullptr;
  dragCanceled_ = handler && handler->OnDragEnter(browser_, dragDataOf(*event->mimeData()),
                                                  operationsOf(event->possibleActions()));
  if (dragCanceled_) {
    event->ignore();
    return;
  }
  QWebEngineView::dragEnterEvent(event);
}

void View::dragMoveEvent(QDragMoveEvent* event) {
  if (dragCanceled_) {
    event->ignore();
    return;
  }
  QWebEngineView::dragMoveEvent(event);
}

void View::dragLeaveEvent(QDragLeaveEvent* event) {
  if (std::exchange(dragCanceled_, false)) {
    return;
  }
  QWebEngineView::dragLeaveEvent(event);
}

void View::dropEvent(QDropEvent* event) {
  if (std::exchange(dragCanceled_, false)) {
    event->ignore();
    return;
  }
  QWebEngineView::dropEvent(event);
}

}  // namespace cef_qt
