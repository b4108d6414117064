#include "platform/linux/alert_dialog_linux.h"

#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScreen>

#include "src/platform/event_loop.h"

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
