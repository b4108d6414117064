#include "osr/input/interpreted_keys.h"

#include <utility>

namespace client {

void InterpretedKeys::press(const SystemEvent& event, const std::function<void()>& interpret) {
  if (!text_.acceptsText()) {
    keys_.sendKeyDown(event);
    return;
  }
  const bool wasComposing = text_.isComposing();
  const InterpretedPress made = interpreted(interpret);
  if (!wasComposing && made.isTyping()) {
    SystemEvent typed = event;
    typed.characters = made.inserted.empty() ? event.characters : made.inserted;
    keys_.sendKeyDown(typed);
  } else if (made.isCommand) {
    apply(made);
    keys_.sendKeyDown(event);
  } else {
    keys_.sendConsumedKeyDown(event);
    apply(made);
  }
}

InterpretedPress InterpretedKeys::interpreted(const std::function<void()>& interpret) {
  current_.emplace();
  interpret();
  return *std::exchange(current_, std::nullopt);
}

void InterpretedKeys::apply(const InterpretedPress& press) {
  if (!press.inserted.empty() || press.replaced) {
    text_.commit(press.inserted, press.replaced);
  }
  if (press.marked) {
    const InterpretedPress::Marked& marked = *press.marked;
    text_.compose(marked.text, marked.underlines, marked.selected, marked.replaced);
  } else if (press.isUnmarked) {
    text_.finish();
  }
}

void InterpretedKeys::insert(const std::u16string& text, std::optional<CefRange> replaced) {
  if (current_) {
    current_->inserted += text;
    current_->replaced = replaced;
    current_->marked.reset();  // replaced by the inserted text
  } else {
    text_.commit(text, replaced);
  }
}

void InterpretedKeys::mark(const std::u16string& text, const TextInput::Underlines& underlines,
                           const CefRange& selected, std::optional<CefRange> replaced) {
  if (current_) {
    current_->marked = InterpretedPress::Marked{text, underlines, selected, replaced};
  } else {
    text_.compose(text, underlines, selected, replaced);
  }
}

void InterpretedKeys::unmark() {
  if (current_) {
    current_->isUnmarked = true;
  } else {
    text_.finish();
  }
}

void InterpretedKeys::command() {
  if (current_) {
    current_->isCommand = true;
  }
}

}  // namespace client
