#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QProcess>
#include <cstdio>
#include <stdexcept>

#include "services/clipboard.h"
#include "src/platform/event_loop.h"

namespace zantrio {
namespace {

constexpr const char* kReadClipboard = "--read-clipboard";

// A display of the test's own.
class Display {
 public:
  Display() {
    server_.start("Xvfb", {"-displayfd", "1", "-screen", "0", "800x600x24", "-nolisten", "tcp"});
    while (!server_.canReadLine()) {
      if (!server_.waitForReadyRead(test::kWaitLimitMs)) {
        throw std::runtime_error("Xvfb does not start");
      }
    }
    qputenv("DISPLAY", ':' + server_.readLine().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
  }
  ~Display() {
    server_.terminate();
    server_.waitForFinished(test::kWaitLimitMs);
  }

 private:
  QProcess server_;
};

TEST(ClipboardX11, GivesTheTextToOtherPrograms) {
  const std::string text = "caf\u00E9 \U0001F600 100%\nsecond line";
  ASSERT_TRUE(createClipboard()->copyText(text));
  QProcess reader;
  reader.start(QCoreApplication::applicationFilePath(), {kReadClipboard});
  // The reader asks this process, whose event loop has to run.
  ASSERT_TRUE(test::waitFor([&reader] { return reader.state() == QProcess::NotRunning; }));
  EXPECT_EQ(reader.readAllStandardOutput().toStdString(), text);
}

}  // namespace
}  // namespace zantrio

int main(int argc, char** argv) {
  if (argc == 2 && std::string(argv[1]) == zantrio::kReadClipboard) {
    const QApplication reader(argc, argv);
    std::fputs(QApplication::clipboard()->text().toUtf8().constData(), stdout);
    return 0;
  }
  testing::InitGoogleTest(&argc, argv);
  if (testing::GTEST_FLAG(list_tests)) {
    return RUN_ALL_TESTS();
  }
  const zantrio::Display display;
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
