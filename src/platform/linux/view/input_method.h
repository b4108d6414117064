// Between Qt's input methods and the portable text input.
#pragma once

#include <QInputMethodEvent>
#include <QVariant>

#include "osr/input/text_input.h"

namespace client {

// Hands on what the input method composes, finishes or takes back.
void takeInputMethodEvent(TextInput& text, const QInputMethodEvent& event);

// What an input method asks of the focused field; invalid where only the widget knows.
QVariant answerInputMethod(const TextInput& text, Qt::InputMethodQuery query);

Qt::InputMethodHints inputMethodHintsOf(cef_text_input_mode_t mode);

}  // namespace client
