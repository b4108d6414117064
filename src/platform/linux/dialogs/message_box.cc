#include "platform/linux/dialogs/message_box.h"

#include "platform/linux/application/application.h"

namespace zantrio {
namespace {

constexpr qsizetype kMostCharacters = 1200;
constexpr qsizetype kMostLines = 20;
constexpr int kLongestWord = 40;

// The end of what fits into the box.
qsizetype shownLength(const QString& text) {
  qsizetype end = 0;
  for (qsizetype line = 0; line < kMostLines; ++line) {
    end = text.indexOf(u'\n', end);
    if (end < 0 || end >= kMostCharacters) {
      return qMin(text.size(), kMostCharacters);
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
    if (wordLength >= kLongestWord && !character.isLowSurrogate() && !character.isMark()) {
      broken += kBreakHere;
      wordLength = 0;
    }
    broken += character;
    wordLength = character.isSpace() ? 0 : wordLength + 1;
  }
  return broken;
}

}  // namespace

std::unique_ptr<QMessageBox> makeMessageBox(const std::string& text, QMessageBox::Icon icon,
                                            QWidget* parent) {
  const QString whole = toShownText(text);
  const QString shown = whole.left(shownLength(whole));
  auto box = std::make_unique<QMessageBox>(parent);
  box->setWindowTitle(
      QStringLiteral(" "));  // the executable's name would stand in for an empty one
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

}  // namespace zantrio
