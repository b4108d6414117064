#include "platform/linux/view/input_method.h"

#include <QRect>
#include <QTextCharFormat>
#include <algorithm>

namespace client {
namespace {

using Attribute = QInputMethodEvent::Attribute;

QString toText(const CefString& text) {
  return QString::fromStdU16String(text.ToString16());
}

uint32_t toPosition(int position) {
  return static_cast<uint32_t>(std::max(position, 0));
}

// Input methods mark the active clause by a background.
CefCompositionUnderline underlineOf(const Attribute& attribute) {
  CefCompositionUnderline underline;
  const auto [first, last] = std::minmax({attribute.start, attribute.start + attribute.length});
  underline.range = CefRange(toPosition(first), toPosition(last));
  const QTextCharFormat format = attribute.value.value<QTextFormat>().toCharFormat();
  if (format.underlineColor().isValid()) {
    underline.color = format.underlineColor().rgba();
  }
  if (format.background().style() != Qt::NoBrush) {
    underline.background_color = format.background().color().rgba();
    underline.thick = 1;
  }
  return underline;
}

TextInput::Underlines underlinesOf(const QInputMethodEvent& event) {
  TextInput::Underlines underlines;
  for (const Attribute& attribute : event.attributes()) {
    if (attribute.type == QInputMethodEvent::TextFormat) {
      underlines.push_back(underlineOf(attribute));
    }
  }
  return underlines;
}

// At the end, unless the input method sets it.
CefRange caretOf(const QInputMethodEvent& event) {
  auto caret = static_cast<uint32_t>(event.preeditString().size());
  for (const Attribute& attribute : event.attributes()) {
    if (attribute.type == QInputMethodEvent::Cursor) {
      caret = toPosition(attribute.start);
    }
  }
  return {caret, caret};
}

// Qt counts from the caret, the browser in the field's text.
std::optional<CefRange> replacedBy(const QInputMethodEvent& event, const TextInput& text) {
  if (event.replacementLength() <= 0) {
    return std::nullopt;
  }
  const int from = static_cast<int>(text.selectedRange().from) + event.replacementStart();
  return CefRange(toPosition(from), toPosition(from + event.replacementLength()));
}

}  // namespace

void applyInputMethodEvent(TextInput& text, const QInputMethodEvent& event) {
  const std::optional<CefRange> replaced = replacedBy(event, text);
  const bool commits = !event.commitString().isEmpty() || replaced;
  if (commits) {
    text.commit(event.commitString().toStdU16String(), replaced);
  }
  if (!event.preeditString().isEmpty()) {
    text.compose(event.preeditString().toStdU16String(), underlinesOf(event), caretOf(event));
  } else if (!commits) {
    text.cancel();
  }
}

QVariant inputMethodReply(const TextInput& text, Qt::InputMethodQuery query) {
  switch (query) {
    case Qt::ImEnabled:
      return text.acceptsText();
    case Qt::ImCursorRectangle:
    case Qt::ImAnchorRectangle: {
      const CefRect place = text.boundsOf(0);
      return QRect(place.x, place.y, place.width, place.height);
    }
    case Qt::ImCurrentSelection:
      return toText(text.selectedText());
    default:
      return {};
  }
}

Qt::InputMethodHints inputMethodHintsOf(cef_text_input_mode_t mode) {
  switch (mode) {
    case CEF_TEXT_INPUT_MODE_TEL:
      return Qt::ImhDialableCharactersOnly;
    case CEF_TEXT_INPUT_MODE_URL:
      return Qt::ImhUrlCharactersOnly | Qt::ImhNoAutoUppercase;
    case CEF_TEXT_INPUT_MODE_EMAIL:
      return Qt::ImhEmailCharactersOnly | Qt::ImhNoAutoUppercase;
    case CEF_TEXT_INPUT_MODE_NUMERIC:
    case CEF_TEXT_INPUT_MODE_DECIMAL:
      return Qt::ImhFormattedNumbersOnly;
    default:
      return Qt::ImhNone;
  }
}

}  // namespace client
