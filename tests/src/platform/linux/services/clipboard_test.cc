#include "platform/linux/services/clipboard.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QProcess>
#include <cstdio>

#include "services/clipboard.h"
#include "src/platform/linux/event_loop.h"
#include "support/server_process.h"

namespace zantrio {
namespace {

constexpr const char* kReadClipboard = "--read-clipboard";

TEST(ClipboardLinux, GivesTheTextToOtherProgramsAfterTheObjectIsGone) {
  const std::string text = "caf\u00E9 \U0001F600 100% <b>\n\ttwo lines";
  ASSERT_TRUE(createClipboard()->copyText(text));
  EXPECT_FALSE(QApplication::clipboard()->mimeData()->hasHtml());
  QProcess reader;
  reader.start(QCoreApplication::applicationFilePath(), {kReadClipboard});
  // The reader asks this process, whose event loop has to run.
  ASSERT_TRUE(test::waitFor([&reader] { return reader.state() == QProcess::NotRunning; }));
  EXPECT_EQ(reader.readAllStandardOutput().toStdString(), text);
}

TEST(ClipboardLinux, ReplacesWhatWasThereAlsoByNothing) {
  ASSERT_TRUE(createClipboard()->copyText("before"));
  ASSERT_TRUE(createClipboard()->copyText(""));
  EXPECT_EQ(QApplication::clipboard()->text(), "");
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
  const zantrio::test::VirtualDisplay display;
  qputenv("QT_QPA_PLATFORM", "xcb");
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
