#pragma once

#include <QProcess>
#include <QString>

namespace zantrio::test {

// A session bus of the test's own, which this process and its children use. To be made before
// anything asks for the session bus.
class SessionBus {
 public:
  SessionBus();
  SessionBus(const SessionBus&) = delete;
  SessionBus& operator=(const SessionBus&) = delete;
  ~SessionBus();

 private:
  QProcess daemon_;
};

}  // namespace zantrio::test
