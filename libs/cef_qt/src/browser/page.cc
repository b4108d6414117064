#include "browser/page.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QPointer>
#include <QTimer>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineView>
#include <chrono>

#include "base/browser_log.h"
#include "base/qt_text.h"
#include "browser/browser_list.h"
#include "browser/browser_window.h"
#include "browser/frame_impl.h"
#include "browser/profile.h"
#include "include/cef_request.h"
#include "threads/post_for.h"

namespace cef_qt {
namespace {

// A process that ends this soon after a reload is taken to crash on this page.
constexpr std::chrono::milliseconds kCrashLoopWindow{10000};

// Qt passes a page's objection to being left to javaScriptConfirm, with this text.
bool isBeforeUnloadQuestion(const QString& text) {
  return text == QCoreApplication::translate("QWebEnginePage",
                                             "Are you sure you want to leave this page? Changes "
                                             "that you made may not be saved.");
}

class Request final : public CefRequest {
 public:
  explicit Request(CefString url) : url_(std::move(url)) {}

  CefString GetURL() override { return url_; }
  CefString GetMethod() override { return "GET"; }

 private:
  const CefString url_;
  IMPLEMENT_REFCOUNTING(Request);
};

cef_termination_status_t statusOf(QWebEnginePage::RenderProcessTerminationStatus status) {
  switch (status) {
    case QWebEnginePage::CrashedTerminationStatus:
      return TS_PROCESS_CRASHED;
    case QWebEnginePage::KilledTerminationStatus:
      return TS_PROCESS_WAS_KILLED;
    default:
      return TS_ABNORMAL_TERMINATION;
  }
}

cef_window_open_disposition_t dispositionOf(QWebEnginePage::WebWindowType type) {
  switch (type) {
    case QWebEnginePage::WebBrowserTab:
      return CEF_WOD_NEW_FOREGROUND_TAB;
    case QWebEnginePage::WebBrowserBackgroundTab:
      return CEF_WOD_NEW_BACKGROUND_TAB;
    case QWebEnginePage::WebDialog:
      return CEF_WOD_NEW_POPUP;
    default:
      return CEF_WOD_NEW_WINDOW;
  }
}

}  // namespace

class Page::DialogScope {
 public:
  explicit DialogScope(Page* page) : page_(page) { ++page_->dialogDepth_; }
  ~DialogScope() {
    if (--page_->dialogDepth_ == 0 && page_->onIdle_) {
      postTo(TID_UI, std::exchange(page_->onIdle_, nullptr));
    }
  }
  DialogScope(const DialogScope&) = delete;
  DialogScope& operator=(const DialogScope&) = delete;

 private:
  Page* const page_;
};

Page::Page(QWebEngineProfile* profile, Browser* browser, const CefBrowserSettings& settings)
    : QWebEnginePage(profile), browser_(browser), settings_(settings) {
  connect(this, &QWebEnginePage::windowCloseRequested, this, [this] {
    askedToClose_ = false;
    browser_->pageAgreedToClose();
  });
  if (Profile::isScriptLost()) {
    ownScript();
  }
  connect(this, &QWebEnginePage::renderProcessTerminated, this, &Page::renderProcessEnded);
  connect(this, &QWebEnginePage::loadingChanged, this, &Page::loadingChanged);
  connect(this, &QWebEnginePage::geometryChangeRequested, this, [this](const QRect& rect) {
    if (browser_->window()) {
      browser_->window()->setGeometry({rect.x(), rect.y(), rect.width(), rect.height()});
    }
  });
}

QWebEnginePage* Page::createWindow(WebWindowType type) {
  Browser::Options options;
  options.client = browser_->client();
  options.settings = settings_;
  options.isPopup = true;
  if (!options.client) {
    return nullptr;
  }
  if (const auto handler = options.client->GetLifeSpanHandler()) {
    CefWindowInfo windowInfo;
    bool noJavaScriptAccess = false;
    if (handler->OnBeforePopup(browser_, browser_->GetMainFrame(), 0, CefString(), CefString(),
                               dispositionOf(type), true, CefPopupFeatures(), windowInfo,
                               options.client, options.settings, options.extraInfo,
                               &noJavaScriptAccess)) {
      return nullptr;
    }
  }
  const CefRefPtr<Browser> popup = Browser::create(options);
  postTo(TID_UI, [popup] { popup->startPopup(); });
  return popup->window()->page();
}

bool Page::acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) {
  const CefRefPtr<CefClient> client = browser_->client();
  const auto handler = client ? client->GetRequestHandler() : nullptr;
  if (!handler) {
    return true;
  }
  const CefRefPtr<Frame> frame =
      isMainFrame ? browser_->mainFrame()
                  : new Frame(browser_, false, CefString(), browser_->mainFrame());
  const bool gesture = type == NavigationTypeLinkClicked || type == NavigationTypeFormSubmitted;
  return !handler->OnBeforeBrowse(browser_, frame,
                                  new Request(fromQt(QString::fromLatin1(url.toEncoded()))),
                                  gesture, type == NavigationTypeRedirect);
}

JsDialog::Result Page::askClient(cef_jsdialog_type_t type, const QUrl& origin, const QString& text,
                                 const QString& proposal) {
  const DialogScope scope(this);
  struct State {
    QEventLoop loop;
    JsDialog::Result result;
    bool done = false;
  };
  const auto state = std::make_shared<State>();
  connect(this, &Page::dialogsEnded, &state->loop, [&state] {
    state->done = true;
    state->result = {true, false, QString()};
    state->loop.quit();
  });
  const JsDialog::Request request{type, origin.toString(), text, proposal};
  postTo(TID_UI, [browser = CefRefPtr<Browser>(browser_), request, state] {
    JsDialog::askClient(browser, request, [state](const JsDialog::Result& result) {
      if (!std::exchange(state->done, true)) {
        state->result = result;
        state->loop.quit();
      }
    });
  });
  if (!state->done) {
    state->loop.exec();
  }
  return state->result;
}

void Page::javaScriptAlert(const QUrl& origin, const QString& text) {
  const JsDialog::Result result = askClient(JSDIALOGTYPE_ALERT, origin, text, QString());
  if (!result.handled) {
    const DialogScope scope(this);
    QWebEnginePage::javaScriptAlert(origin, text);
  }
}

bool Page::javaScriptConfirm(const QUrl& origin, const QString& text) {
  if (!isBeforeUnloadQuestion(text)) {
    const JsDialog::Result result = askClient(JSDIALOGTYPE_CONFIRM, origin, text, QString());
    if (result.handled) {
      return result.success;
    }
  } else if (std::exchange(askedToClose_, false)) {
    // The page stays, so that Chromium is not blocked while the dialog is open. A user who agrees
    // to leave closes the browser by force.
    askUserToLeave(text);
    return false;
  }
  const DialogScope scope(this);
  return QWebEnginePage::javaScriptConfirm(origin, text);
}

bool Page::javaScriptPrompt(const QUrl& origin, const QString& text, const QString& proposal,
                            QString* input) {
  const JsDialog::Result result = askClient(JSDIALOGTYPE_PROMPT, origin, text, proposal);
  if (result.handled) {
    *input = result.input;
    return result.success;
  }
  const DialogScope scope(this);
  return QWebEnginePage::javaScriptPrompt(origin, text, proposal, input);
}

void Page::askToClose() {
  if (processGone_) {
    browser_->pageAgreedToClose();  // no process can run beforeunload
    return;
  }
  askedToClose_ = true;
  triggerAction(RequestClose);
}

void Page::askUserToLeave(const QString& text) {
  postFor(this, TID_UI, [this, browser = CefRefPtr<Browser>(browser_), text] {
    if (leaveDialog_) {
      return;
    }
    leaveDialog_ = JsDialog::showDefault(browser, {JSDIALOGTYPE_CONFIRM, title(), text, QString()},
                                         this, [browser](const JsDialog::Result& result) {
                                           if (result.success) {
                                             browser->close(true);
                                           }
                                         });
  });
}

void Page::ownScript() {
  if (scripts().find(Profile::pageScript().name()).isEmpty()) {
    scripts().insert(Profile::pageScript());
  }
}

void Page::endDialogs() {
  emit dialogsEnded();
  // The dialogs that Qt itself has opened.
  const QWidget* view = QWebEngineView::forPage(this);
  const QList<QDialog*> dialogs = view ? view->findChildren<QDialog*>() : QList<QDialog*>();
  for (QDialog* dialog : dialogs) {
    dialog->reject();
  }
}

void Page::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& text,
                                    int line, const QString& source) {
  const cef_log_severity_t severities[] = {LOGSEVERITY_INFO, LOGSEVERITY_WARNING,
                                           LOGSEVERITY_ERROR};
  BrowserLog::instance().console(severities[level], text, line, source);
}

void Page::loadingChanged(const QWebEngineLoadingInfo& info) {
  switch (info.status()) {
    case QWebEngineLoadingInfo::LoadStartedStatus:
      processGone_ = false;
      break;
    case QWebEngineLoadingInfo::LoadStoppedStatus:
      break;  // a download, say: the page stays
    case QWebEngineLoadingInfo::LoadSucceededStatus:
    case QWebEngineLoadingInfo::LoadFailedStatus:
      httpStatus_ =
          info.errorDomain() == QWebEngineLoadingInfo::HttpStatusCodeDomain ? info.errorCode() : 0;
      break;
  }
}

void Page::renderProcessEnded(RenderProcessTerminationStatus status, int exitCode) {
  processGone_ = true;
  // Chromium gives the next process the same id, and Qt assumes that this id already has the
  // profile's script. A page's own scripts are always sent.
  Profile::setScriptLost();
  BrowserList::instance().forEach([](Browser& browser) {
    if (browser.window()) {
      browser.window()->ownScript();
    }
  });
  postTo(TID_UI, [self = QPointer<Page>(this), browser = CefRefPtr<Browser>(browser_),
                  status = statusOf(status), exitCode] {
    const CefRefPtr<CefClient> client = browser->client();
    if (!client) {
      return;
    }
    browser->frames()->renderProcessGone();
    const bool closing = self && std::exchange(self->askedToClose_, false);
    const auto handler = client->GetRequestHandler();
    if (handler) {
      handler->OnRenderProcessTerminated(browser, status, exitCode, CefString());
    }
    if (closing) {
      browser->pageAgreedToClose();
    } else if (!handler && self) {
      self->recover();
    }
  });
}

void Page::recover() {
  BrowserLog& log = BrowserLog::instance();
  if (recovered_.isValid() && !recovered_.hasExpired(kCrashLoopWindow.count())) {
    log.write(LOGSEVERITY_ERROR, "page",
              "The render process ended again soon after a reload; the page is not reloaded");
    return;
  }
  log.write(LOGSEVERITY_ERROR, "page", "The render process ended; the page is reloaded");
  recovered_.start();
  triggerAction(Reload);
}

}  // namespace cef_qt
