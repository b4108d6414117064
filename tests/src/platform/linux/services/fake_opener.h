#pragma once

#include <QByteArray>
#include <QStringList>

#include "support/temporary_folder.h"

namespace zantrio::test {

// Replaces xdg-open in PATH while it lives.
class FakeOpener {
 public:
  FakeOpener();
  FakeOpener(const FakeOpener&) = delete;
  FakeOpener& operator=(const FakeOpener&) = delete;
  ~FakeOpener();

  // "argument count: first argument" for each start.
  QStringList starts() const;
  // Waits for this number of starts; the test fails without them.
  QStringList waitForStarts(int count) const;
  // The environment of the latest start, one variable per line.
  QStringList environment() const;

 private:
  QStringList linesOf(const char* name) const;

  const TemporaryFolder folder_;
  const QByteArray pathBefore_;
};

}  // namespace zantrio::test
