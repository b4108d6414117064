#include <gtest/gtest.h>

#include <QApplication>
#include <QStandardPaths>

#include "support/server_process.h"
#include "support/temporary_folder.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const zantrio::test::TemporaryFolder home;
  qputenv("HOME", QByteArray::fromStdString(home.path()));
  qunsetenv("XDG_CONFIG_HOME");
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const zantrio::test::SessionBus bus;
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
