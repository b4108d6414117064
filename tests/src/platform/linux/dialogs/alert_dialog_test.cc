#include "platform/linux/dialogs/alert_dialog.h"

#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include "files/choose_dialogs.h"
#include "services/confirm_dialog.h"
#include "src/platform/linux/event_loop.h"

namespace zantrio {
namespace {

using test::openWindows;
using test::waitFor;

class AlertDialogLinux : public testing::Test {
 protected:
  ~AlertDialogLinux() override {
    for (QMessageBox* notice : openWindows<QMessageBox>()) {
      delete notice;
    }
  }

  // Shows a notice and gives its window.
  static QMessageBox& showNotice(const std::string& text) {
    const QList<QMessageBox*> before = openWindows<QMessageBox>();
    createAlertDialog()->show(text);
    for (QMessageBox* notice : openWindows<QMessageBox>()) {
      if (!before.contains(notice)) {
        return *notice;
      }
    }
    throw std::runtime_error("no notice is open");
  }
};

TEST_F(AlertDialogLinux, ShowsThePlainTextWithoutHeaderOrIcon) {
  const QMessageBox& notice = showNotice("<b>caf\u00E9</b> & more");
  EXPECT_EQ(notice.text(), QString::fromUtf8("<b>caf\u00E9</b> & more"));
  EXPECT_EQ(notice.textFormat(), Qt::PlainText);
  EXPECT_EQ(notice.windowTitle().trimmed(), "");
  EXPECT_EQ(notice.icon(), QMessageBox::NoIcon);
  EXPECT_EQ(notice.standardButtons(), QMessageBox::Ok);
  EXPECT_FALSE(notice.isModal());
}

TEST_F(AlertDialogLinux, KeepsEachNoticeUntilItIsDismissed) {
  const QPointer<QMessageBox> first(&showNotice("first"));
  const QPointer<QMessageBox> second(&showNotice("second"));
  ASSERT_EQ(openWindows<QMessageBox>().size(), 2);
  first->button(QMessageBox::Ok)->click();
  EXPECT_TRUE(waitFor([&] { return first.isNull(); }));
  ASSERT_FALSE(second.isNull());
  EXPECT_TRUE(second->isVisible());
}

TEST_F(AlertDialogLinux, OutlivesTheWindowThatWasActive) {
  auto window = std::make_unique<QWidget>();
  window->show();
  QApplication::setActiveWindow(window.get());
  const QPointer<QMessageBox> notice(&showNotice("stays"));
  window.reset();
  ASSERT_FALSE(notice.isNull());
  EXPECT_TRUE(notice->isVisible());
}

// Clicks as the window system does, which does not reach a window that a dialog blocks.
void click(QWidget& widget) {
  QWidget* window = widget.window();
  QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {},
                    widget.mapTo(window, widget.rect().center()));
}

TEST_F(AlertDialogLinux, CanBeDismissedWhileAQuestionOrAFileDialogBlocksTheWindow) {
  QPushButton window;
  int windowClicks = 0;
  QObject::connect(&window, &QPushButton::clicked, [&windowClicks] { ++windowClicks; });
  window.show();
  QApplication::setActiveWindow(&window);
  click(window);
  ASSERT_EQ(windowClicks, 1);
  std::vector<std::string> urls;
  const std::vector<std::function<void()>> blockingCalls = {
      [] { createConfirmDialog()->ask("Go on?", IConfirmDialog::kCaution); },
      [&urls] { createFileChooseDialog()->show(urls); }};
  for (const auto& call : blockingCalls) {
    const QPointer<QMessageBox> notice(&showNotice("dismiss me"));
    test::whenModal<QDialog>([&](QDialog& dialog) {
      click(window);
      click(*notice->button(QMessageBox::Ok));
      EXPECT_TRUE(waitFor([&] { return notice.isNull(); }));
      dialog.reject();
    });
    call();
  }
  EXPECT_EQ(windowClicks, 1);
}

TEST_F(AlertDialogLinux, FitsOnTheScreenWhateverTheText) {
  std::string manyLines;
  for (int line = 0; line < 5000; ++line) {
    manyLines += "line " + std::to_string(line) + "\n";
  }
  const QSize screen = QApplication::primaryScreen()->availableSize();
  for (const std::string& text : {std::string(250, 'm') + "/" + std::string(250, 'w'), manyLines,
                                  std::string(1'000'000, 'x')}) {
    const QMessageBox& notice = showNotice(text);
    EXPECT_LE(notice.width(), screen.width());
    EXPECT_LE(notice.height(), screen.height());
  }
}

TEST_F(AlertDialogLinux, KeepsTheWholeOfALongTextBehindDetails) {
  const std::string text(100'000, 'x');
  const QMessageBox& notice = showNotice(text);
  EXPECT_LT(notice.text().size(), 2000);
  EXPECT_EQ(notice.detailedText().toStdString(), text);
}

}  // namespace
}  // namespace zantrio
