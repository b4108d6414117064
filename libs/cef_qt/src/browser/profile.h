// The profile that all pages share.
#pragma once

#include <QString>

#include "base/options.h"

class QWebEngineProfile;
class QWebEngineScript;

namespace cef_qt {

// UI thread.
class Profile {
 public:
  static void create(const Options& options);
  // After the last page is deleted.
  static void destroy();

  static QWebEngineProfile* current();

  // The script that new documents get before their own ones.
  static void setPageScript(const QString& script);
  static QWebEngineScript pageScript();

  // A render process ended: those that follow it do not get the script from the profile.
  static void setLostItsScript();
  static bool lostItsScript();
};

}  // namespace cef_qt
