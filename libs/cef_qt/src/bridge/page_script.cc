#include "bridge/page_script.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include "bridge/page_channel.h"
#include "page_script_text.h"

namespace cef_qt {
namespace {

QJsonArray toArray(const RouterNameList& routers) {
  QJsonArray names;
  for (const RouterNames& router : routers) {
    names.append(router.first);
    names.append(router.second);
  }
  return names;
}

// Marks the messages by which frames attach to their top document. A page cannot guess it.
QString frameToken() {
  static const QString kToken = QUuid::createUuid().toString(QUuid::WithoutBraces);
  return kToken;
}

}  // namespace

QString toJson(const RouterNameList& routers) {
  return QString::fromUtf8(QJsonDocument(toArray(routers)).toJson(QJsonDocument::Compact));
}

QString pageScript(int version, const SchemeNames& schemes, const RouterNameList& top,
                   const RouterNameList& frames) {
  const QJsonObject setup{{"version", version},
                          {"object", PageChannel::objectName()},
                          {"property", PageChannel::propertyIndex()},
                          {"signal", PageChannel::signalIndex()},
                          {"frameToken", frameToken()},
                          {"dialogScheme", schemes.dialogs},
                          {"originScheme", schemes.origins},
                          {"topRouters", toArray(top)},
                          {"frameRouters", toArray(frames)}};
  return QString::fromUtf8(kPageScript) + '(' +
         QString::fromUtf8(QJsonDocument(setup).toJson(QJsonDocument::Compact)) + ',' +
         QString::fromUtf8(kPageDialogs) + ");";
}

}  // namespace cef_qt
