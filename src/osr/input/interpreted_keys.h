#pragma once

#include <functional>
#include <optional>
#include <string>

#include "osr/input/key_input.h"
#include "osr/input/text_input.h"

namespace client {

// What an input method made of a press.
struct InterpretedPress {
  struct Marked {
    std::u16string text;
    TextInput::Underlines underlines;
    CefRange selected;
    std::optional<CefRange> replaced;
  };

  bool isTyping() const { return inserted.size() <= 1 && !replaced && !marked; }

  std::u16string inserted;
  std::optional<CefRange> replaced;
  std::optional<Marked> marked;
  bool isUnmarked = false;
  bool isCommand = false;
};

// Presses that the system's input method looks at first, for systems that leave that to the view:
// what it makes of a press decides what the browser gets. Ownership: the view's, as is what it
// stands on. Thread: UI.
class InterpretedKeys {
 public:
  InterpretedKeys(KeyInput& keys, TextInput& text) : keys_(keys), text_(text) {}
  InterpretedKeys(const InterpretedKeys&) = delete;
  InterpretedKeys& operator=(const InterpretedKeys&) = delete;

  // `interpret` hands the press to the input method, which answers by the operations below inside
  // the call. It is left out where nothing takes text. A press that types one character, or none,
  // is a key as any other; one that the input method used up is told as such.
  void press(const SystemEvent& event, const std::function<void()>& interpret);

  // Of the input method, also without a press.
  void insert(const std::u16string& text, std::optional<CefRange> replaced);
  void mark(const std::u16string& text, const TextInput::Underlines& underlines,
            const CefRange& selected, std::optional<CefRange> replaced);
  void unmark();
  // The press is none of text: the page has to act on it.
  void command();

 private:
  InterpretedPress interpreted(const std::function<void()>& interpret);
  void apply(const InterpretedPress& press);

  KeyInput& keys_;
  TextInput& text_;
  std::optional<InterpretedPress> current_;  // while a press is looked at
};

}  // namespace client
