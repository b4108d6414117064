#pragma once

#include <QByteArray>
#include <QStringList>

#include "support/temporary_folder.h"

namespace zantrio::test {

// Puts an xdg-open of its own in front of the system's while it lives.
class FakeOpener {
 public:
  FakeOpener();
  FakeOpener(const FakeOpener&) = delete;
  FakeOpener& operator=(const FakeOpener&) = delete;
  ~FakeOpener();

  // "count: first argument" for each time that it was started.
  QStringList starts() const;
  // Waits until it was started that often; fails the test when it is not.
  QStringList waitForStarts(int count) const;
  // The environment, a variable a line, in which it was started last.
  QStringList environment() const;

 private:
  QStringList linesOf(const char* name) const;

  const TemporaryFolder folder_;
  const QByteArray pathBefore_;
};

}  // namespace zantrio::test
