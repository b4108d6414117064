#include "browser/frame_impl.h"

#include <QUrl>
#include <QWebEnginePage>
#include <algorithm>

#include "base/process_message_impl.h"
#include "base/qt_text.h"
#include "bridge/script_context.h"
#include "browser/browser_impl.h"
#include "browser/browser_window.h"
#include "browser/render_side.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

// Whether the character would end or break the comment that names the script.
bool isUnsafe(QChar c) {
  return c.isSpace() || c == u'"' || c == u'\'' || c.isNonCharacter();
}

QString commentSafe(QStringView url) {
  QString out;
  out.reserve(url.size());
  for (const QChar c : url) {
    if (isUnsafe(c)) {
      out += QString::fromLatin1(QUrl::toPercentEncoding(QString(c)));
    } else {
      out += c;
    }
  }
  return out;
}

// Adds the script's URL and first line to its code, so that errors and stack traces name them.
QString scriptText(QStringView code, QStringView scriptUrl, int startLine) {
  constexpr int kMaxLines = 100000;
  QString text(std::clamp(startLine - 1, 0, kMaxLines), u'\n');
  text += code;
  if (!scriptUrl.isEmpty()) {
    // On its own line, because the code may end in a comment.
    text += QStringView(u"\n//# sourceURL=");
    text += commentSafe(scriptUrl);
  }
  return text;
}

// Hands a message to the browser side or the render side.
class Delivery final : public CefTask {
 public:
  Delivery(CefRefPtr<Browser> browser, CefRefPtr<CefFrame> frame, CefProcessId target,
           CefRefPtr<CefProcessMessage> message)
      : browser_(std::move(browser)),
        frame_(std::move(frame)),
        target_(target),
        message_(std::move(message)) {}

  void Execute() override {
    const CefRefPtr<CefClient> client = browser_->client();
    if (!client) {
      return;
    }
    if (target_ == PID_BROWSER) {
      client->OnProcessMessageReceived(browser_, frame_, PID_RENDERER, message_);
    } else if (const auto handler = RenderSide::handler()) {
      handler->OnProcessMessageReceived(browser_, frame_, PID_BROWSER, message_);
    }
  }

 private:
  const CefRefPtr<Browser> browser_;
  const CefRefPtr<CefFrame> frame_;
  const CefProcessId target_;
  const CefRefPtr<CefProcessMessage> message_;
  IMPLEMENT_REFCOUNTING(Delivery);
};

}  // namespace

Frame::Frame(CefRefPtr<Browser> browser, bool isMain, CefString name, CefRefPtr<CefFrame> parent)
    : browser_(std::move(browser)),
      isMain_(isMain),
      parent_(std::move(parent)),
      name_(std::move(name)) {}

CefRefPtr<CefBrowser> Frame::GetBrowser() {
  return browser_;
}

CefString Frame::GetURL() {
  if (url_) {
    return *url_;
  }
  return browser_->window() ? fromQt(browser_->window()->url()) : CefString();
}

CefString Frame::GetName() {
  const std::lock_guard lock(mutex_);
  return name_;
}

void Frame::setName(const CefString& name) {
  const std::lock_guard lock(mutex_);
  name_ = name;
}

void Frame::setContext(CefRefPtr<ScriptContext> context) {
  context_ = std::move(context);
}

void Frame::LoadURL(const CefString& url) {
  postTo(TID_UI, [self = CefRefPtr<Frame>(this), url = toQt(url)] { self->loadNow(url); });
}

void Frame::loadNow(const QString& url) {
  if (isMain_ && browser_->window()) {
    browser_->window()->load(url);
  } else if (context_) {
    context_->send(PageChannel::kNavigate, url);
  }
}

void Frame::ExecuteJavaScript(const CefString& code, const CefString& script_url, int start_line) {
  // Scripts travel with the responses to queries, so that the page sees both in order.
  postTo(TID_RENDERER, [self = CefRefPtr<Frame>(this),
                        script = scriptText(viewOf(code), viewOf(script_url), start_line)] {
    self->runNow(script);
  });
}

void Frame::runNow(const QString& script) {
  if (isMain_ && browser_->window()) {
    browser_->window()->runScript(script);
  } else if (context_) {
    context_->send(PageChannel::kRun, script);
  }
}

void Frame::edit(int webAction) {
  postTo(TID_UI, [self = CefRefPtr<Frame>(this), webAction] {
    if (self->browser_->window()) {
      self->browser_->window()->page()->triggerAction(
          static_cast<QWebEnginePage::WebAction>(webAction));
    }
  });
}

void Frame::Undo() {
  edit(QWebEnginePage::Undo);
}
void Frame::Redo() {
  edit(QWebEnginePage::Redo);
}
void Frame::Cut() {
  edit(QWebEnginePage::Cut);
}
void Frame::Copy() {
  edit(QWebEnginePage::Copy);
}
void Frame::Paste() {
  edit(QWebEnginePage::Paste);
}
void Frame::SelectAll() {
  edit(QWebEnginePage::SelectAll);
}

void Frame::Delete() {
  // Qt WebEngine has no action for it.
  ExecuteJavaScript("document.execCommand('delete')", CefString(), 0);
}

void Frame::SendProcessMessage(CefProcessId target_process, CefRefPtr<CefProcessMessage> message) {
  CefRefPtr<ProcessMessage> sent = ProcessMessage::takeForSending(message);
  if (!sent) {
    return;
  }
  Threads::instance().post(target_process == PID_BROWSER ? TID_UI : TID_RENDERER,
                           new Delivery(browser_, this, target_process, std::move(sent)), 0);
}

}  // namespace cef_qt
