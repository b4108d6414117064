// The QApplication of the framework.
#pragma once

#include <QApplication>
#include <QByteArray>
#include <memory>
#include <vector>

#include "include/cef_app.h"

namespace cef_qt {

// Whether the environment names a display or a Qt platform plug-in.
bool hasDisplay();

// Owns the QApplication and its arguments, to which Qt keeps pointers. UI thread.
class Application {
 public:
  // Ends the process with one line on standard error and exit code 1 if the display cannot be
  // opened.
  explicit Application(const CefMainArgs& args);
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

 private:
  std::vector<QByteArray> words_;
  std::vector<char*> argv_;
  int argc_;
  std::unique_ptr<QApplication> application_;
};

}  // namespace cef_qt
