// The QApplication of the framework.
#pragma once

#include <QApplication>
#include <QByteArray>
#include <array>
#include <memory>

namespace cef_qt {

// Whether the environment names a display or a Qt platform plug-in.
bool hasDisplay();

// Owns the QApplication and its arguments, to which Qt keeps pointers. UI thread.
//
// Qt gets the name of the program only. It would take the names of files for options of its own,
// also those after "--", and one of these options loads a library.
class Application {
 public:
  // Ends the process with one line on standard error and exit code 1 if the display cannot be
  // opened.
  explicit Application(const QByteArray& program);
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

 private:
  QByteArray program_;
  int argc_ = 1;
  std::array<char*, 2> argv_{};
  std::unique_ptr<QApplication> application_;
};

}  // namespace cef_qt
