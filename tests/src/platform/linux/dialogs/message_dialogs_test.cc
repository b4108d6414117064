#include "platform/linux/dialogs/message_dialogs.h"

#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include "files/choose_dialogs.h"
#include "src/platform/linux/event_loop.h"

namespace zantrio {
namespace {

using test::openWindows;
using test::waitFor;
using test::whenModal;

class AlertDialogLinux : public testing::Test {
 protected:
  ~AlertDialogLinux() override { qDeleteAll(openWindows<QMessageBox>()); }

  // Shows a notice and returns its window.
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
  EXPECT_FALSE(notice.isModal());
}

TEST_F(AlertDialogLinux, StaysUntilDismissedEvenWithoutTheActiveWindow) {
  auto window = std::make_unique<QWidget>();
  window->show();
  QApplication::setActiveWindow(window.get());
  const QPointer<QMessageBox> first(&showNotice("first"));
  const QPointer<QMessageBox> second(&showNotice("second"));
  window.reset();
  ASSERT_EQ(openWindows<QMessageBox>().size(), 2);
  first->button(QMessageBox::Ok)->click();
  EXPECT_TRUE(waitFor([&] { return first.isNull(); }));
  ASSERT_FALSE(second.isNull());
  EXPECT_TRUE(second->isVisible());
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
    whenModal<QDialog>([&](QDialog& dialog) {
      click(window);
      click(*notice->button(QMessageBox::Ok));
      EXPECT_TRUE(waitFor([&] { return notice.isNull(); }));
      dialog.reject();
    });
    call();
  }
  EXPECT_EQ(windowClicks, 1);
}

TEST_F(AlertDialogLinux, FitsOnTheScreenAndKeepsTheWholeTextBehindDetails) {
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
    if (text.size() > 2000) {
      EXPECT_LT(notice.text().size(), 2000);
      EXPECT_EQ(notice.detailedText().toStdString(), text);
    }
  }
}

bool ask(int kind, const std::function<void(QMessageBox&)>& answer,
         const std::string& text = "Stop <i>now</i>?") {
  whenModal<QMessageBox>(answer);
  return createConfirmDialog()->ask(text, kind);
}

TEST(ConfirmDialogLinux, IsFalseHoweverItsWindowIsClosed) {
  EXPECT_FALSE(ask(0, [](QMessageBox& question) { question.close(); }));
  auto* window = new QWidget;
  window->show();
  QApplication::setActiveWindow(window);
  EXPECT_FALSE(ask(0, [window](QMessageBox& question) {
    EXPECT_EQ(question.parentWidget(), window);
    delete window;
  }));
}

TEST(ConfirmDialogLinux, ShowsThePlainTextTwoButtonsAndTheKindsIcon) {
  const std::pair<int, QMessageBox::Icon> kinds[] = {
      {IConfirmDialog::kCaution, QMessageBox::Warning},
      {IConfirmDialog::kStop, QMessageBox::Critical},
      {IConfirmDialog::kPlain, QMessageBox::Information},
      {7, QMessageBox::Critical}};
  for (const auto& [kind, icon] : kinds) {
    ask(kind, [expected = icon](QMessageBox& question) {
      EXPECT_EQ(question.icon(), expected);
      EXPECT_EQ(question.text(), "Stop <i>now</i>?");
      EXPECT_EQ(question.textFormat(), Qt::PlainText);
      EXPECT_EQ(question.windowTitle().trimmed(), "");
      EXPECT_EQ(question.buttons().size(), 2);
      EXPECT_EQ(question.defaultButton()->text().remove('&'), "Yes");
      question.close();
    });
  }
}

TEST(ConfirmDialogLinux, ShowsEveryAmpersandOfTheText) {
  const std::string text = "R" + std::string(20, '&') + "D";
  const auto check = [&text](QMessageBox& question) {
    const auto* label = question.findChild<QLabel*>("qt_msgbox_label");
    const int whole = label->fontMetrics().horizontalAdvance(QString::fromStdString(text));
    EXPECT_GE(label->sizeHint().width(), whole);
    question.close();
  };
  ask(0, check, text);
}

}  // namespace
}  // namespace zantrio
