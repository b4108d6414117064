#include "browser/origin_scheme.h"

#include <QBuffer>
#include <QWebEngineUrlScheme>
#include <algorithm>

#include "base/qt_text.h"
#include "browser/browser_list.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

// A page could send any number. The oldest ones are dropped first.
constexpr std::size_t kMaxWaiting = 1000;

OriginScheme* currentScheme = nullptr;

int portOf(const QUrl& url) {
  return url.port(url.scheme() == QLatin1String("https") ? 443 : 80);
}

bool isOfOrigin(const QUrl& url, const QUrl& origin) {
  return origin.isValid() && !origin.scheme().isEmpty() && url.scheme() == origin.scheme() &&
         url.host() == origin.host() && portOf(url) == portOf(origin);
}

}  // namespace

OriginScheme::OriginScheme() {
  currentScheme = this;
}

OriginScheme::~OriginScheme() {
  currentScheme = nullptr;
}

void OriginScheme::registerScheme() {
  QWebEngineUrlScheme scheme(name().toLatin1());
  scheme.setSyntax(QWebEngineUrlScheme::Syntax::Path);
  scheme.setFlags(QWebEngineUrlScheme::SecureScheme | QWebEngineUrlScheme::CorsEnabled |
                  QWebEngineUrlScheme::ContentSecurityPolicyIgnored);
  QWebEngineUrlScheme::registerScheme(scheme);
}

std::optional<QUrl> OriginScheme::take(const QString& proof) {
  if (!currentScheme) {
    return std::nullopt;
  }
  auto& waiting = currentScheme->waiting_;
  const auto found = std::find_if(waiting.begin(), waiting.end(),
                                  [&proof](const Waiting& each) { return each.proof == proof; });
  if (found == waiting.end()) {
    return std::nullopt;
  }
  const QUrl origin = found->origin;
  waiting.erase(found);
  return origin;
}

void OriginScheme::requestStarted(QWebEngineUrlRequestJob* job) {
  const QString proof = job->requestUrl().path();
  if (job->requestMethod() != "POST") {
    job->fail(QWebEngineUrlRequestJob::RequestDenied);
    return;
  }
  if (waiting_.size() == kMaxWaiting) {
    waiting_.pop_front();
  }
  waiting_.push_back({proof, job->initiator()});
  job->reply("text/plain", new QBuffer(job));
  postTo(TID_RENDERER, [proof] {
    BrowserList::instance().forEach(
        [&proof](Browser& browser) { browser.frames()->originArrived(proof); });
  });
}

CefString reliableUrl(const QString& said, const QUrl& origin) {
  const QUrl url(said);
  const bool isBlob = url.scheme() == QLatin1String("blob");
  if (isOfOrigin(isBlob ? QUrl(url.path()) : url, origin) ||
      url.scheme() == QLatin1String("about")) {
    // As it was compared: others may take the same text for a URL of another host.
    return fromQt(QString::fromLatin1(url.toEncoded()));
  }
  return origin.scheme().isEmpty() ? CefString() : fromQt(origin.toString());
}

}  // namespace cef_qt
