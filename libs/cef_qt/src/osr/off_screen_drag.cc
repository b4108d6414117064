#include "osr/off_screen_drag.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QEventLoop>
#include <QUrl>
#include <QWebEngineView>

#include "base/drag_data_impl.h"
#include "base/qt_text.h"
#include "browser/dragged.h"
#include "include/cef_render_handler.h"
#include "osr/event_flags_qt.h"
#include "osr/off_screen_browser.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

Qt::DropActions actionsOf(cef_drag_operations_mask_t operations) {
  Qt::DropActions actions;
  actions.setFlag(Qt::CopyAction, (operations & DRAG_OPERATION_COPY) != 0);
  actions.setFlag(Qt::LinkAction, (operations & DRAG_OPERATION_LINK) != 0);
  actions.setFlag(Qt::MoveAction, (operations & DRAG_OPERATION_MOVE) != 0);
  return actions;
}

// One action of several, as Chromium would choose.
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

// Not by the application: while a system's drag runs over the client's view, it would hand the
// event to that view.
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
  tellOperation(sent.isAccepted(), sent.dropAction());
}

void OffScreenDrag::tellOperation(bool accepted, Qt::DropAction action) {
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
  const auto data = draggedData(*own_);
  postTo(TID_UI, [browser = QPointer<OffScreenBrowser>(&browser_), data, supported, start] {
    const auto handler = browser && browser->drag().loop_ ? browser->handler() : nullptr;
    const bool taken =
        handler && handler->StartDragging(browser->browser(), data, operationsOf(supported),
                                          qRound(start.x() / browser->scale()),
                                          qRound(start.y() / browser->scale()));
    if (!taken && browser) {
      browser->drag().cancel();
    }
  });
  const QPointer<OffScreenBrowser> alive(&browser_);
  loop.exec();
  if (!alive) {
    return Qt::IgnoreAction;
  }
  loop_ = nullptr;
  own_ = nullptr;
  postTo(TID_UI, [browser = alive] {
    if (browser) {
      browser->input().dragEnded();
    }
  });
  return result_;
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

// Takes the place of Qt's own: Chromium in Qt begins the drags of its pages by this operation and
// offers no other way to see them. Qt's does the same for all drags but those of off-screen pages.
Qt::DropAction QDrag::exec(Qt::DropActions supportedActions) {
  if (auto* const browser = cef_qt::OffScreenBrowser::of(source())) {
    return browser->drag().run(*this, supportedActions);
  }
  return exec(supportedActions, Qt::IgnoreAction);
}
