// The Qt WebEngine profile that all pages share.
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
  // Called after the last page is deleted.
  static void destroy();

  static QWebEngineProfile* current();

  // The script that new documents run before their own scripts.
  static void setPageScript(const QString& script);
  static QWebEngineScript pageScript();

  // Once a render process has ended, Qt no longer sends the profile's script to new ones, so pages
  // need the script themselves.
  static void setScriptLost();
  static bool isScriptLost();
};

}  // namespace cef_qt
