#include "browser/script_text.h"

#include <QUrl>
#include <algorithm>

namespace cef_qt {
namespace {

// What would end or break the comment that names the script.
bool isUnsafe(QChar c) {
  return c.isSpace() || c == u'"' || c == u'\'' || c.isNonCharacter();
}

QString commentSafe(QStringView url) {
  QString out;
  out.reserve(url.size());
  for (const QChar c : url) {
    if (isUnsafe(c)) {
      out += QString::fromLatin1(QUrl::toPercentEncoding(QString(c)));
    } else {
      out += c;
    }
  }
  return out;
}

}  // namespace

QString scriptText(QStringView code, QStringView scriptUrl, int startLine) {
  constexpr int kMostLines = 100000;
  QString text(std::clamp(startLine - 1, 0, kMostLines), u'\n');
  text += code;
  if (!scriptUrl.isEmpty()) {
    // On a line of its own, so that a comment at the code's end does not swallow it.
    text += QStringView(u"\n//# sourceURL=");
    text += commentSafe(scriptUrl);
  }
  return text;
}

}  // namespace cef_qt
