#include "osr/off_screen_drag.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QEventLoop>
#include <QUrl>
#include <QWebEngineView>

#include "base/drag_data_impl.h"
#include "base/qt_text.h"
#include "browser/drag_conversion.h"
#include "include/cef_render_handler.h"
#include "osr/event_conversion.h"
#include "osr/off_screen_browser.h"
#include "threads/post_for.h"

namespace cef_qt {
namespace {

Qt::DropActions actionsOf(cef_drag_operations_mask_t operations) {
  Qt::DropActions actions;
  actions.setFlag(Qt::CopyAction, (operations & DRAG_OPERATION_COPY) != 0);
  actions.setFlag(Qt::LinkAction, (operations & DRAG_OPERATION_LINK) != 0);
  actions.setFlag(Qt::MoveAction, (operations & DRAG_OPERATION_MOVE) != 0);
  return actions;
}

// The action that Chromium prefers.
Qt::DropAction firstOf(Qt::DropActions actions) {
  for (const Qt::DropAction action : {Qt::CopyAction, Qt::MoveAction, Qt::LinkAction}) {
    if (actions & action) {
      return action;
    }
  }
  return Qt::IgnoreAction;
}

QList<QUrl> urlsOf(CefDragData& data) {
  QList<QUrl> urls;
  std::vector<CefString> paths;
  data.GetFilePaths(paths);
  for (const CefString& path : paths) {
    urls << QUrl::fromLocalFile(toQt(path));
  }
  if (data.IsLink()) {
    urls << QUrl(toQt(data.GetLinkURL()));
  }
  return urls;
}

std::unique_ptr<QMimeData> mimeOf(CefDragData& data) {
  auto mime = std::make_unique<QMimeData>();
  if (const QList<QUrl> urls = urlsOf(data); !urls.isEmpty()) {
    mime->setUrls(urls);
  }
  if (!data.GetFragmentText().empty()) {
    mime->setText(toQt(data.GetFragmentText()));
  }
  if (!data.GetFragmentHtml().empty()) {
    mime->setHtml(toQt(data.GetFragmentHtml()));
  }
  return mime;
}

}  // namespace

OffScreenDrag::OffScreenDrag(OffScreenBrowser& browser) : browser_(browser) {}

OffScreenDrag::~OffScreenDrag() = default;

// Bypasses the application object, which would send the event to the client's view while a system
// drag runs over that view.
void OffScreenDrag::deliver(QEvent& event) {
  static_cast<QObject*>(browser_.view())->event(&event);
}

void OffScreenDrag::enter(const CefRefPtr<CefDragData>& data, const CefMouseEvent& event,
                          cef_drag_operations_mask_t allowed) {
  dragged_ = mimeOf(*data);
  allowed_ = actionsOf(allowed);
  const QPoint point = browser_.input().toView(event).toPoint();
  QDragEnterEvent sent(point, allowed_, own_ ? own_ : dragged_.get(), Qt::LeftButton,
                       keyboardModifiersOf(event.modifiers));
  sent.setDropAction(firstOf(allowed_));
  deliver(sent);
  over(event, allowed);
}

void OffScreenDrag::over(const CefMouseEvent& event, cef_drag_operations_mask_t allowed) {
  if (!dragged_) {
    return;
  }
  allowed_ = actionsOf(allowed);
  QDragMoveEvent sent(browser_.input().toView(event).toPoint(), allowed_,
                      own_ ? own_ : dragged_.get(), Qt::LeftButton,
                      keyboardModifiersOf(event.modifiers));
  sent.setDropAction(firstOf(allowed_));
  deliver(sent);
  reportOperation(sent.isAccepted(), sent.dropAction());
}

void OffScreenDrag::reportOperation(bool accepted, Qt::DropAction action) {
  if (const auto handler = browser_.handler()) {
    handler->UpdateDragCursor(browser_.browser(),
                              accepted ? operationsOf(action) : DRAG_OPERATION_NONE);
  }
}

void OffScreenDrag::leave() {
  if (!dragged_) {
    return;
  }
  QDragLeaveEvent sent;
  deliver(sent);
  dragged_.reset();
}

void OffScreenDrag::drop(const CefMouseEvent& event) {
  if (!dragged_) {
    return;
  }
  QDropEvent sent(browser_.input().toView(event), allowed_, own_ ? own_ : dragged_.get(),
                  Qt::NoButton, keyboardModifiersOf(event.modifiers));
  sent.setDropAction(firstOf(allowed_));
  deliver(sent);
  dragged_.reset();
}

Qt::DropAction OffScreenDrag::run(const QDrag& drag, Qt::DropActions supported) {
  if (loop_ || !drag.mimeData()) {
    return Qt::IgnoreAction;
  }
  QEventLoop loop;
  loop_ = &loop;
  own_ = drag.mimeData();
  result_ = Qt::IgnoreAction;
  const QPoint start = browser_.view()->mapFromGlobal(QCursor::pos());
  const auto data = pageDragDataOf(*own_);
  postFor(&browser_, TID_UI, [this, data, supported, start] {
    if (!startAtClient(data, supported, start)) {
      cancel();
    }
  });
  // The browser may be closed while the loop runs.
  const QPointer<OffScreenBrowser> browser(&browser_);
  loop.exec();
  if (!browser) {
    return Qt::IgnoreAction;
  }
  loop_ = nullptr;
  own_ = nullptr;
  postFor(&browser_, TID_UI, [this] { browser_.input().dragEnded(); });
  return result_;
}

bool OffScreenDrag::startAtClient(const CefRefPtr<CefDragData>& data, Qt::DropActions supported,
                                  const QPoint& start) {
  const auto handler = loop_ ? browser_.handler() : nullptr;
  return handler && handler->StartDragging(browser_.browser(), data, operationsOf(supported),
                                           qRound(start.x() / browser_.scale()),
                                           qRound(start.y() / browser_.scale()));
}

void OffScreenDrag::endedAt(cef_drag_operations_mask_t operation) {
  result_ = firstOf(actionsOf(operation));
}

void OffScreenDrag::systemDragEnded() {
  if (loop_) {
    loop_->quit();
  }
}

void OffScreenDrag::cancel() {
  result_ = Qt::IgnoreAction;
  systemDragEnded();
}

}  // namespace cef_qt

// Replaces Qt's definition: Qt WebEngine starts the drags of its pages through this function and
// has no other hook. Drags that do not come from off-screen pages behave as with Qt's definition.
Qt::DropAction QDrag::exec(Qt::DropActions supportedActions) {
  if (auto* const browser = cef_qt::OffScreenBrowser::of(source())) {
    return browser->drag().run(*this, supportedActions);
  }
  return exec(supportedActions, Qt::IgnoreAction);
}
