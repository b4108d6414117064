#include "browser/profile.h"

#include <QWebEngineProfile>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <memory>

#include "browser/dialog_scheme.h"
#include "browser/origin_scheme.h"

namespace cef_qt {
namespace {

std::unique_ptr<QWebEngineProfile>& profile() {
  static std::unique_ptr<QWebEngineProfile> current;
  return current;
}

bool scriptLost = false;

QWebEngineScript& currentScript() {
  static QWebEngineScript script;
  return script;
}

std::unique_ptr<DialogScheme>& dialogs() {
  static std::unique_ptr<DialogScheme> current;
  return current;
}

std::unique_ptr<OriginScheme>& origins() {
  static std::unique_ptr<OriginScheme> current;
  return current;
}

void usePath(QWebEngineProfile* target, const Options& options) {
  target->setPersistentStoragePath(options.cachePath);
  target->setCachePath(options.cachePath + QStringLiteral("/Cache"));
  target->setPersistentCookiesPolicy(options.persistSessionCookies
                                         ? QWebEngineProfile::ForcePersistentCookies
                                         : QWebEngineProfile::AllowPersistentCookies);
}

}  // namespace

void Profile::create(const Options& options) {
  if (options.cachePath.isEmpty()) {
    profile() = std::make_unique<QWebEngineProfile>();
  } else {
    profile() = std::make_unique<QWebEngineProfile>(QStringLiteral("Default"));
    usePath(profile().get(), options);
  }
  dialogs() = std::make_unique<DialogScheme>();
  profile()->installUrlSchemeHandler(DialogScheme::name().toLatin1(), dialogs().get());
  origins() = std::make_unique<OriginScheme>();
  profile()->installUrlSchemeHandler(OriginScheme::name().toLatin1(), origins().get());
  if (!options.userAgent.isEmpty()) {
    profile()->setHttpUserAgent(options.userAgent);
  }
}

void Profile::destroy() {
  profile().reset();
  dialogs().reset();
  origins().reset();
}

QWebEngineProfile* Profile::current() {
  return profile().get();
}

void Profile::setPageScript(const QString& script) {
  QWebEngineScript next;
  next.setName(QStringLiteral("bridge"));
  next.setSourceCode(script);
  next.setInjectionPoint(QWebEngineScript::DocumentCreation);
  next.setWorldId(QWebEngineScript::MainWorld);
  next.setRunsOnSubFrames(true);
  current()->scripts()->remove(currentScript());
  currentScript() = next;
  current()->scripts()->insert(next);
}

QWebEngineScript Profile::pageScript() {
  return currentScript();
}

void Profile::setScriptLost() {
  scriptLost = true;
}

bool Profile::isScriptLost() {
  return scriptLost;
}

}  // namespace cef_qt
