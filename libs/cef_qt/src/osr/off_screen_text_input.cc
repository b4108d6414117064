#include "osr/off_screen_text_input.h"

#include <QApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QQuickWidget>
#include <QTextCharFormat>
#include <algorithm>
#include <limits>
#include <utility>

#include "base/qt_text.h"
#include "include/cef_render_handler.h"
#include "osr/off_screen_browser.h"
#include "threads/post_for.h"

namespace cef_qt {
namespace {

constexpr Qt::InputMethodQueries kQueries = Qt::ImHints | Qt::ImCursorRectangle |
                                            Qt::ImCursorPosition | Qt::ImAnchorPosition |
                                            Qt::ImCurrentSelection;

cef_text_input_mode_t modeOf(Qt::InputMethodHints hints) {
  if (hints & Qt::ImhDialableCharactersOnly) {
    return CEF_TEXT_INPUT_MODE_TEL;
  }
  if (hints & Qt::ImhUrlCharactersOnly) {
    return CEF_TEXT_INPUT_MODE_URL;
  }
  if (hints & Qt::ImhEmailCharactersOnly) {
    return CEF_TEXT_INPUT_MODE_EMAIL;
  }
  if (hints & Qt::ImhFormattedNumbersOnly) {
    return CEF_TEXT_INPUT_MODE_NUMERIC;
  }
  return CEF_TEXT_INPUT_MODE_TEXT;
}

CefRect scaledDown(const QRectF& rect, double scale) {
  return {qRound(rect.x() / scale), qRound(rect.y() / scale), qRound(rect.width() / scale),
          qRound(rect.height() / scale)};
}

TextInputState stateOf(QWidget& page, double scale) {
  // Password fields have no input methods, as in an ordinary window.
  if (!page.testAttribute(Qt::WA_InputMethodEnabled)) {
    return {};
  }
  QInputMethodQueryEvent query(kQueries);
  QApplication::sendEvent(&page, &query);
  const uint32_t cursor = query.value(Qt::ImCursorPosition).toUInt();
  const uint32_t anchor = query.value(Qt::ImAnchorPosition).toUInt();
  const CefRange selection(std::min(cursor, anchor), std::max(cursor, anchor));
  return {modeOf(Qt::InputMethodHints(query.value(Qt::ImHints).toInt())),
          scaledDown(query.value(Qt::ImCursorRectangle).toRectF(), scale),
          query.value(Qt::ImCurrentSelection).toString(), selection};
}

bool isNone(const CefRange& range) {
  return range.from == std::numeric_limits<uint32_t>::max();
}

int lengthOf(const cef_range_t& range) {
  return static_cast<int>(range.to) - static_cast<int>(range.from);
}

// Without a style, Chromium draws a line in the text's own colour.
QTextCharFormat formatOf(const CefCompositionUnderline& underline) {
  QTextCharFormat format;
  if (underline.color != 0) {
    format.setUnderlineStyle(QTextCharFormat::SingleUnderline);
    format.setUnderlineColor(QColor::fromRgba(underline.color));
  }
  if (underline.background_color != 0) {
    format.setBackground(QColor::fromRgba(underline.background_color));
  }
  return format;
}

}  // namespace

OffScreenTextInput::OffScreenTextInput(OffScreenBrowser& browser) : browser_(browser) {
  // Qt WebEngine emits this signal when the caret may have moved.
  connect(QGuiApplication::inputMethod(), &QInputMethod::cursorRectangleChanged, this,
          &OffScreenTextInput::reportSoon);
}

void OffScreenTextInput::compose(const QString& text,
                                 const std::vector<CefCompositionUnderline>& underlines,
                                 const CefRange& replaced, const CefRange& selection) {
  if (text.isEmpty()) {
    cancel();
    return;
  }
  QList<QInputMethodEvent::Attribute> attributes;
  for (const CefCompositionUnderline& underline : underlines) {
    attributes.append({QInputMethodEvent::TextFormat, static_cast<int>(underline.range.from),
                       lengthOf(underline.range), formatOf(underline)});
  }
  // Qt supports a caret here, not a selection.
  attributes.append({QInputMethodEvent::Cursor, static_cast<int>(selection.to), 1, QVariant()});
  QInputMethodEvent event(text, attributes);
  if (!isNone(replaced)) {
    event.setCommitString(QString(), static_cast<int>(replaced.from), lengthOf(replaced));
  }
  composed_ = text;
  send(event);
}

void OffScreenTextInput::commit(const QString& text, const CefRange& replaced) {
  QInputMethodEvent event;
  // Qt WebEngine takes a non-negative start as a position in the field's text.
  event.setCommitString(text, isNone(replaced) ? 0 : static_cast<int>(replaced.from),
                        isNone(replaced) ? 0 : lengthOf(replaced));
  composed_.clear();
  send(event);
}

void OffScreenTextInput::finish() {
  if (const QString text = std::exchange(composed_, QString()); !text.isEmpty()) {
    commit(text,
           CefRange(std::numeric_limits<uint32_t>::max(), std::numeric_limits<uint32_t>::max()));
  }
}

void OffScreenTextInput::cancel() {
  if (std::exchange(composed_, QString()).isEmpty()) {
    return;
  }
  // Qt WebEngine defers the first empty event, because a text may follow, and acts on the second.
  for (int i = 0; i < 2; ++i) {
    QInputMethodEvent event;
    send(event);
  }
}

void OffScreenTextInput::send(QInputMethodEvent& event) {
  browser_.input().sendHeldKey();
  if (QWidget* const page = browser_.page()) {
    QApplication::sendEvent(page, &event);
  }
}

// From a task, out of Chromium's callback.
void OffScreenTextInput::reportSoon() {
  if (std::exchange(isReportScheduled_, true)) {
    return;
  }
  postFor(this, TID_UI, [this] {
    isReportScheduled_ = false;
    report();
  });
}

void OffScreenTextInput::report() {
  QWidget* const page = browser_.page();
  const auto handler = browser_.handler();
  if (!page || !handler) {
    return;
  }
  const CefRefPtr<CefBrowser> browser(browser_.browser());
  const TextInputState now = stateOf(*page, browser_.scale());
  const TextInputState before = std::exchange(reported_, now);
  if (now.selected != before.selected || !(now.selection == before.selection)) {
    handler->OnTextSelectionChanged(browser, fromQt(now.selected), now.selection);
  }
  if (!(now.caret == before.caret) || !(now.selection == before.selection)) {
    handler->OnImeCompositionRangeChanged(browser, now.selection, {now.caret});
  }
  if (now.mode != before.mode) {
    handler->OnVirtualKeyboardRequested(browser, now.mode);
  }
}

}  // namespace cef_qt
