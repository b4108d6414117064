// The profile that all pages share.
#pragma once

#include <QString>

#include "process/options.h"

class QWebEngineProfile;

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
};

}  // namespace cef_qt
