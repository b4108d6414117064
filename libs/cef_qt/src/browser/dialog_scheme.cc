#include "browser/dialog_scheme.h"

#include <QBuffer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrlQuery>
#include <QWebEngineUrlScheme>

#include "browser/browser_list.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

DialogScheme* currentScheme = nullptr;

CefRefPtr<Browser> browserOf(const QString& document) {
  return BrowserList::instance().find(
      [&document](Browser& browser) { return browser.frames()->isCurrent(document); });
}

void reply(const QPointer<QWebEngineUrlRequestJob>& job, const JsDialog::Result& result) {
  // The page may have been closed while the dialog was open.
  if (!job) {
    return;
  }
  const QJsonObject object{{"success", result.success}, {"input", result.input}};
  auto* body = new QBuffer(job);
  body->setData(QJsonDocument(object).toJson(QJsonDocument::Compact));
  job->reply("application/json", body);
}

void ask(const CefRefPtr<Browser>& browser, const JsDialog::Request& request,
         const QPointer<QWebEngineUrlRequestJob>& job) {
  JsDialog::askClient(browser, request, [browser, request, job](const JsDialog::Result& result) {
    if (result.handled) {
      reply(job, result);
    } else if (job) {
      JsDialog::showDefault(browser, request, job,
                            [job](const JsDialog::Result& chosen) { reply(job, chosen); });
    }
  });
}

}  // namespace

DialogScheme::DialogScheme() {
  currentScheme = this;
}

DialogScheme::~DialogScheme() {
  currentScheme = nullptr;
}

DialogScheme* DialogScheme::current() {
  return currentScheme;
}

void DialogScheme::registerScheme() {
  QWebEngineUrlScheme scheme(name().toLatin1());
  scheme.setSyntax(QWebEngineUrlScheme::Syntax::Path);
  scheme.setFlags(QWebEngineUrlScheme::SecureScheme | QWebEngineUrlScheme::CorsEnabled |
                  QWebEngineUrlScheme::ContentSecurityPolicyIgnored);
  QWebEngineUrlScheme::registerScheme(scheme);
}

void DialogScheme::requestStarted(QWebEngineUrlRequestJob* job) {
  const QUrl url = job->requestUrl();
  const QStringList path = url.path().split('/');
  const QUrlQuery query(url);
  if (path.size() != 2) {
    job->fail(QWebEngineUrlRequestJob::UrlInvalid);
    return;
  }
  const auto type = static_cast<cef_jsdialog_type_t>(path[1].toInt());
  const Pending dialog{job,
                       path[0],
                       {type, job->initiator().toString(),
                        query.queryItemValue(QStringLiteral("text"), QUrl::FullyDecoded),
                        query.queryItemValue(QStringLiteral("proposal"), QUrl::FullyDecoded)}};
  if (browserOf(dialog.document)) {
    start(dialog);
  } else {
    unattached_.push_back(dialog);
  }
}

void DialogScheme::documentAttached(const QString& document) {
  for (const Pending& dialog : unattached_) {
    if (dialog.document == document) {
      start(dialog);
    }
  }
  std::erase_if(unattached_, [&document](const Pending& dialog) {
    return !dialog.job || dialog.document == document;
  });
}

void DialogScheme::start(const Pending& dialog) {
  // From a task, because the client's handler may run a nested loop.
  postTo(TID_UI, [dialog] {
    if (const CefRefPtr<Browser> browser = browserOf(dialog.document)) {
      ask(browser, dialog.request, dialog.job);
    }
  });
}

}  // namespace cef_qt
