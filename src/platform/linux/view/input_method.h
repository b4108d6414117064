// Between Qt's input methods and the portable text input.
#pragma once

#include <QInputMethodEvent>
#include <QVariant>

#include "osr/input/text_input.h"

namespace client {

// Applies a composition, commit or cancellation.
void applyInputMethodEvent(TextInput& text, const QInputMethodEvent& event);

// Answers an input method's query about the focused field; invalid if only the widget knows.
QVariant inputMethodReply(const TextInput& text, Qt::InputMethodQuery query);

Qt::InputMethodHints inputMethodHintsOf(cef_text_input_mode_t mode);

}  // namespace client
