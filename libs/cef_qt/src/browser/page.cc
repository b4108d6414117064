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
#include "browser/default_dialog.h"
#include "browser/frame_impl.h"
#include "browser/profile.h"
#include "browser/request_impl.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

// A page whose process ends this soon after it was loaded again would only do so for ever.
constexpr std::chrono::milliseconds kShortLife{10000};

// Qt asks about leaving a page through javaScriptConfirm, with this text.
bool isBeforeUnloadQuestion(const QString& text) {
  return text == QCoreApplication::translate("QWebEnginePage",
                                             "Are you sure you want to leave this page? Changes "
                                             "that you made may not be saved.");
}

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

class Page::Waiting {
 public:
  explicit Waiting(Page* page) : page_(page) { ++page_->dialogDepth_; }
  ~Waiting() {
    if (--page_->dialogDepth_ == 0 && page_->onIdle_) {
      postTo(TID_UI, std::exchange(page_->onIdle_, nullptr));
    }
  }
  Waiting(const Waiting&) = delete;
  Waiting& operator=(const Waiting&) = delete;

 private:
  Page* const page_;
};

Page::Page(QWebEngineProfile* profile, Browser* browser, const CefBrowserSettings& settings)
    : QWebEnginePage(profile), browser_(browser), settings_(settings) {
  connect(this, &QWebEnginePage::windowCloseRequested, this, [this] {
    askedToClose_ = false;
    browser_->pageAgreedToClose();
  });
  if (Profile::lostItsScript()) {
    keepScript();
  }
  connect(this, &QWebEnginePage::renderProcessTerminated, this, &Page::renderProcessEnded);
  connect(this, &QWebEnginePage::loadStarted, this, [this] { processGone_ = false; });
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
      isMainFrame ? browser_->mainFrame() : new Frame(browser_, false, CefString(), CefString());
  const bool gesture = type == NavigationTypeLinkClicked || type == NavigationTypeFormSubmitted;
  return !handler->OnBeforeBrowse(browser_, frame,
                                  new Request(fromQt(QString::fromLatin1(url.toEncoded()))),
                                  gesture, type == NavigationTypeRedirect);
}

JsDialog::Answer Page::askClient(cef_jsdialog_type_t type, const QUrl& origin, const QString& text,
                                 const QString& proposal) {
  const Waiting waiting(this);
  struct State {
    QEventLoop loop;
    JsDialog::Answer answer;
    bool done = false;
  };
  const auto state = std::make_shared<State>();
  connect(this, &Page::dialogsEnded, &state->loop, [&state] {
    state->done = true;
    state->answer = {true, false, QString()};
    state->loop.quit();
  });
  const JsDialog::Question question{type, origin.toString(), text, proposal};
  postTo(TID_UI, [browser = CefRefPtr<Browser>(browser_), question, state] {
    JsDialog::ask(browser, question, [state](const JsDialog::Answer& answer) {
      if (!std::exchange(state->done, true)) {
        state->answer = answer;
        state->loop.quit();
      }
    });
  });
  if (!state->done) {
    state->loop.exec();
  }
  return state->answer;
}

void Page::javaScriptAlert(const QUrl& origin, const QString& text) {
  const JsDialog::Answer answer = askClient(JSDIALOGTYPE_ALERT, origin, text, QString());
  if (!answer.handled) {
    const Waiting waiting(this);
    QWebEnginePage::javaScriptAlert(origin, text);
  }
}

bool Page::javaScriptConfirm(const QUrl& origin, const QString& text) {
  if (!isBeforeUnloadQuestion(text)) {
    const JsDialog::Answer answer = askClient(JSDIALOGTYPE_CONFIRM, origin, text, QString());
    if (answer.handled) {
      return answer.success;
    }
  } else if (std::exchange(askedToClose_, false)) {
    // The page stays for now; a user who wants to leave ends it without a second question. So
    // Chromium is not held up while the dialog is open.
    askUserToLeave(text);
    return false;
  }
  const Waiting waiting(this);
  return QWebEnginePage::javaScriptConfirm(origin, text);
}

bool Page::javaScriptPrompt(const QUrl& origin, const QString& text, const QString& proposal,
                            QString* input) {
  const JsDialog::Answer answer = askClient(JSDIALOGTYPE_PROMPT, origin, text, proposal);
  if (answer.handled) {
    *input = answer.input;
    return answer.success;
  }
  const Waiting waiting(this);
  return QWebEnginePage::javaScriptPrompt(origin, text, proposal, input);
}

void Page::askToClose() {
  if (processGone_) {
    browser_->pageAgreedToClose();  // nobody is left to answer
    return;
  }
  askedToClose_ = true;
  triggerAction(RequestClose);
}

void Page::askUserToLeave(const QString& text) {
  postTo(TID_UI, [self = QPointer<Page>(this), browser = CefRefPtr<Browser>(browser_), text] {
    // One question at a time.
    if (!self || self->leaveQuestion_) {
      return;
    }
    self->leaveQuestion_ =
        showDefaultDialog(browser, {JSDIALOGTYPE_CONFIRM, self->title(), text, QString()}, self,
                          [browser](const JsDialog::Answer& answer) {
                            if (answer.success) {
                              browser->close(true);
                            }
                          });
  });
}

void Page::keepScript() {
  if (scripts().find(Profile::pageScript().name()).isEmpty()) {
    scripts().insert(Profile::pageScript());
  }
}

void Page::endDialogs() {
  emit dialogsEnded();
  // Qt's own ones.
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

void Page::renderProcessEnded(RenderProcessTerminationStatus status, int exitCode) {
  processGone_ = true;
  // Chromium starts the next process under the same number, and Qt takes it for one that has the
  // profile's script already; what a page has itself is sent again.
  Profile::setLostItsScript();
  BrowserList::instance().forEach([](Browser& browser) {
    if (browser.window()) {
      browser.window()->keepScript();
    }
  });
  postTo(TID_UI, [self = QPointer<Page>(this), browser = CefRefPtr<Browser>(browser_),
                  status = statusOf(status), exitCode] {
    const CefRefPtr<CefClient> client = browser->client();
    if (!client) {
      return;
    }
    browser->documents()->processGone();
    const bool closing = self && std::exchange(self->askedToClose_, false);
    const auto handler = client->GetRequestHandler();
    if (handler) {
      handler->OnRenderProcessTerminated(browser, status, exitCode, CefString());
    }
    if (closing) {
      browser->pageAgreedToClose();
    } else if (!handler && self) {
      self->loadAgain();
    }
  });
}

// For a client that leaves the end of a render process to the framework.
void Page::loadAgain() {
  BrowserLog& log = BrowserLog::instance();
  if (loadedAgain_.isValid() && !loadedAgain_.hasExpired(kShortLife.count())) {
    log.write(LOGSEVERITY_ERROR, "page",
              "The page's process ended soon again; it is left as it is");
    return;
  }
  log.write(LOGSEVERITY_ERROR, "page", "The page's process ended; the page is loaded again");
  loadedAgain_.start();
  triggerAction(Reload);
}

}  // namespace cef_qt
