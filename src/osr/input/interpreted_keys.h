#pragma once

#include <functional>
#include <optional>
#include <string>

#include "osr/input/key_input.h"
#include "osr/input/text_input.h"

namespace client {

// The result of an input method for one key press.
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

// Key presses on systems where the view passes them to the input method first: its result decides
// which events the browser gets. Ownership: the view's, as are the key and text input. Thread: UI.
class InterpretedKeys {
 public:
  InterpretedKeys(KeyInput& keys, TextInput& text) : keys_(keys), text_(text) {}
  InterpretedKeys(const InterpretedKeys&) = delete;
  InterpretedKeys& operator=(const InterpretedKeys&) = delete;

  // `interpret` passes the press to the input method, which calls the functions below before it
  // returns. It is not called if no element takes text. A press that inserts one character or none
  // is sent as an ordinary key; one that the input method consumed is sent as such.
  void press(const SystemEvent& event, const std::function<void()>& interpret);

  // Called by the input method, also without a press.
  void insert(const std::u16string& text, std::optional<CefRange> replaced);
  void mark(const std::u16string& text, const TextInput::Underlines& underlines,
            const CefRange& selected, std::optional<CefRange> replaced);
  void unmark();
  // The press is a command, which the page handles.
  void command();

 private:
  InterpretedPress interpreted(const std::function<void()>& interpret);
  void apply(const InterpretedPress& press);

  KeyInput& keys_;
  TextInput& text_;
  std::optional<InterpretedPress> current_;  // set while a press is interpreted
};

}  // namespace client
