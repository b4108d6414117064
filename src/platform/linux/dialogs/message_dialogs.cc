#include "platform/linux/dialogs/message_dialogs.h"

#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <memory>
#include <new>

#include "platform/linux/application/application.h"

namespace zantrio {
namespace {

constexpr qsizetype kMaxCharacters = 1200;
constexpr qsizetype kMaxLines = 20;
constexpr int kMaxWordLength = 40;

// The length of the text that fits into the box.
qsizetype shownLength(const QString& text) {
  qsizetype end = 0;
  for (qsizetype line = 0; line < kMaxLines; ++line) {
    end = text.indexOf(u'\n', end);
    if (end < 0 || end >= kMaxCharacters) {
      return qMin(text.size(), kMaxCharacters);
    }
    ++end;
  }
  return end;
}

// A label breaks lines at word boundaries only; paths and links may be one word.
QString withBreaksInLongWords(const QString& text) {
  constexpr QChar kBreakHere(0x200B);
  QString broken;
  int wordLength = 0;
  for (const QChar character : text) {
    if (wordLength >= kMaxWordLength && !character.isLowSurrogate() && !character.isMark()) {
      broken += kBreakHere;
      wordLength = 0;
    }
    broken += character;
    wordLength = character.isSpace() ? 0 : wordLength + 1;
  }
  return broken;
}

// Creates a box without buttons that shows `text` (UTF-8) as plain text with an empty title;
// `parent` may be null. The box fits on the screen whatever the length of the text or its words;
// the full text of a very long one is behind "Show Details".
std::unique_ptr<QMessageBox> makeMessageBox(const std::string& text, QMessageBox::Icon icon,
                                            QWidget* parent) {
  const QString whole = toShownText(text);
  const QString shown = whole.left(shownLength(whole));
  auto box = std::make_unique<QMessageBox>(parent);
  box->setWindowTitle(QStringLiteral(" "));  // Qt replaces an empty one with the executable's name
  box->setIcon(icon);
  box->setTextFormat(Qt::PlainText);
  if (shown.size() == whole.size()) {
    box->setText(withBreaksInLongWords(whole));
  } else {
    box->setText(withBreaksInLongWords(shown) + u'…');
    box->setDetailedText(whole);
  }
  return box;
}

// Positions an open notice over the active window, offset from the previous notice. Its size is
// known only once it is open.
void place(QMessageBox& notice) {
  constexpr int kStep = 28;
  static int placed = 0;
  const QWidget* window = windowForDialogs();
  if (window == nullptr) {
    return;  // Qt centres it on the screen
  }
  QRect area = notice.frameGeometry();
  const int offset = kStep * (placed++ % 5);
  area.moveCenter(window->geometry().center() + QPoint(offset, offset));
  notice.move(area.topLeft());
}

QMessageBox::Icon iconFor(int kind) {
  switch (kind) {
    case IConfirmDialog::kCaution:
      return QMessageBox::Warning;
    case IConfirmDialog::kPlain:
      return QMessageBox::Information;
    default:
      return QMessageBox::Critical;
  }
}

}  // namespace

void CAlertDialogLinux::show(const std::string& text) {
  if (!canShowWidgets()) {
    return;
  }
  QMessageBox* notice = makeMessageBox(text, QMessageBox::NoIcon, nullptr).release();
  notice->setStandardButtons(QMessageBox::Ok);
  notice->setModal(false);
  notice->setWindowFlag(Qt::WindowStaysOnTopHint);
  notice->setAttribute(Qt::WA_DeleteOnClose);  // the notice owns itself from here on
  notice->show();
  place(*notice);
}

std::unique_ptr<IAlertDialog> createAlertDialog() {
  return std::unique_ptr<IAlertDialog>(new (std::nothrow) CAlertDialogLinux);
}

bool CConfirmDialogLinux::ask(const std::string& text, int kind) {
  if (!canShowWidgets()) {
    return true;
  }
  // The parent window may be destroyed, with the question, while the question is open.
  const QPointer<QMessageBox> question(
      makeMessageBox(text, iconFor(kind), windowForDialogs()).release());
  question->setWindowModality(Qt::WindowModal);  // leaves open notices usable
  QPushButton* yes = question->addButton(QStringLiteral("&Yes"), QMessageBox::YesRole);
  QPushButton* no = question->addButton(QStringLiteral("&No"), QMessageBox::NoRole);
  question->setDefaultButton(yes);
  question->setEscapeButton(no);
  question->exec();
  const bool confirmed = question && question->clickedButton() == yes;
  delete question;
  return confirmed;
}

std::unique_ptr<IConfirmDialog> createConfirmDialog() {
  return std::unique_ptr<IConfirmDialog>(new (std::nothrow) CConfirmDialogLinux);
}

}  // namespace zantrio
