#include "platform/linux/dialogs/confirm_dialog.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include "src/platform/linux/event_loop.h"

namespace zantrio {
namespace {

using test::whenModal;

bool ask(int kind, const std::function<void(QMessageBox&)>& answer) {
  whenModal<QMessageBox>(answer);
  return createConfirmDialog()->ask("Stop <i>now</i>?", kind);
}

void click(QMessageBox& question, const QString& button) {
  for (QAbstractButton* candidate : question.buttons()) {
    if (candidate->text().remove('&') == button) {
      candidate->click();
      return;
    }
  }
  ADD_FAILURE() << "no button " << button.toStdString();
  question.close();
}

TEST(ConfirmDialogLinux, IsTrueForYesOnlyHoweverItIsAnswered) {
  EXPECT_TRUE(ask(0, [](QMessageBox& question) { click(question, "Yes"); }));
  EXPECT_FALSE(ask(0, [](QMessageBox& question) { click(question, "No"); }));
  EXPECT_TRUE(ask(0, [](QMessageBox& question) { QTest::keyClick(&question, Qt::Key_Return); }));
  EXPECT_FALSE(ask(0, [](QMessageBox& question) { QTest::keyClick(&question, Qt::Key_Escape); }));
  EXPECT_FALSE(ask(0, [](QMessageBox& question) { question.close(); }));
}

TEST(ConfirmDialogLinux, CountsAQuestionThatGoesWithItsWindowAsNo) {
  auto* window = new QWidget;
  window->show();
  QApplication::setActiveWindow(window);
  EXPECT_FALSE(ask(0, [window](QMessageBox& question) {
    EXPECT_EQ(question.parentWidget(), window);
    delete window;
  }));
}

TEST(ConfirmDialogLinux, LooksAsSeriousAsItsKind) {
  const auto iconOf = [](int kind) {
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    ask(kind, [&icon](QMessageBox& question) {
      icon = question.icon();
      click(question, "No");
    });
    return icon;
  };
  EXPECT_EQ(iconOf(IConfirmDialog::kCaution), QMessageBox::Warning);
  EXPECT_EQ(iconOf(IConfirmDialog::kStop), QMessageBox::Critical);
  EXPECT_EQ(iconOf(IConfirmDialog::kPlain), QMessageBox::Information);
  EXPECT_EQ(iconOf(7), QMessageBox::Critical);
  EXPECT_EQ(iconOf(-1), QMessageBox::Critical);
}

TEST(ConfirmDialogLinux, ShowsEveryAmpersandOfTheText) {
  const std::string text = "R" + std::string(20, '&') + "D";
  whenModal<QMessageBox>([&text](QMessageBox& question) {
    const auto* label = question.findChild<QLabel*>("qt_msgbox_label");
    const int whole = label->fontMetrics().horizontalAdvance(QString::fromStdString(text));
    EXPECT_GE(label->sizeHint().width(), whole);
    question.close();
  });
  createConfirmDialog()->ask(text, 0);
}

TEST(ConfirmDialogLinux, ShowsThePlainTextWithTwoButtonsAndAnEmptyHeader) {
  ask(0, [](QMessageBox& question) {
    EXPECT_EQ(question.text(), "Stop <i>now</i>?");
    EXPECT_EQ(question.textFormat(), Qt::PlainText);
    EXPECT_EQ(question.windowTitle().trimmed(), "");
    EXPECT_EQ(question.buttons().size(), 2);
    EXPECT_EQ(question.defaultButton()->text().remove('&'), "Yes");
    click(question, "No");
  });
}

}  // namespace
}  // namespace zantrio
