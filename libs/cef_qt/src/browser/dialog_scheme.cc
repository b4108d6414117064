#include "browser/dialog_scheme.h"

#include <QBuffer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrlQuery>
#include <QWebEngineUrlScheme>

#include "browser/browser_list.h"
#include "browser/default_dialog.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

DialogScheme* currentScheme = nullptr;

CefRefPtr<Browser> browserOf(const QString& document) {
  return BrowserList::instance().find(
      [&document](Browser& browser) { return browser.documents()->isCurrent(document); });
}

void reply(const QPointer<QWebEngineUrlRequestJob>& job, const JsDialog::Answer& answer) {
  // The page may have gone while the dialog was open.
  if (!job) {
    return;
  }
  const QJsonObject object{{"success", answer.success}, {"input", answer.input}};
  auto* body = new QBuffer(job);
  body->setData(QJsonDocument(object).toJson(QJsonDocument::Compact));
  job->reply("application/json", body);
}

void ask(const CefRefPtr<Browser>& browser, const JsDialog::Question& question,
         const QPointer<QWebEngineUrlRequestJob>& job) {
  JsDialog::ask(browser, question, [browser, question, job](const JsDialog::Answer& answer) {
    if (answer.handled) {
      reply(job, answer);
    } else if (job) {
      showDefaultDialog(browser, question, job,
                        [job](const JsDialog::Answer& chosen) { reply(job, chosen); });
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
  const Waiting dialog{job,
                       path[0],
                       {type, job->initiator().toString(),
                        query.queryItemValue(QStringLiteral("text"), QUrl::FullyDecoded),
                        query.queryItemValue(QStringLiteral("proposal"), QUrl::FullyDecoded)}};
  if (browserOf(dialog.document)) {
    start(dialog);
  } else {
    unknown_.push_back(dialog);
  }
}

void DialogScheme::documentKnown(const QString& document) {
  for (const Waiting& dialog : unknown_) {
    if (dialog.document == document) {
      start(dialog);
    }
  }
  std::erase_if(unknown_, [&document](const Waiting& dialog) {
    return !dialog.job || dialog.document == document;
  });
}

void DialogScheme::start(const Waiting& dialog) {
  // Out of Chromium's callback: the client may run a loop of its own.
  postTo(TID_UI, [dialog] {
    if (const CefRefPtr<Browser> browser = browserOf(dialog.document)) {
      ask(browser, dialog.question, dialog.job);
    }
  });
}

}  // namespace cef_qt
