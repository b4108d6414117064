#pragma once

#include <optional>
#include <string>
#include <vector>

#include "osr/view/osr_view.h"

namespace client {

// Forwards an input method's text to the browser, composed or committed, and stores the focused
// field's state for the input method. Without a browser it does nothing. Ranges count UTF-16 units.
// Ownership: the view's, which must outlive it. Thread: UI.
class TextInput {
 public:
  using Underlines = std::vector<CefCompositionUnderline>;

  explicit TextInput(OsrView& view) : view_(view) {}
  TextInput(const TextInput&) = delete;
  TextInput& operator=(const TextInput&) = delete;

  // Replaces the current composition; an empty text cancels it. `selected` is relative to the
  // composition. `replaced` is the range of the field's text to replace.
  void compose(const std::u16string& text, const Underlines& underlines, const CefRange& selected,
               std::optional<CefRange> replaced = std::nullopt);
  // Replaces the composition with final text.
  void commit(const std::u16string& text, std::optional<CefRange> replaced = std::nullopt);
  // Keeps the composition as final text.
  void finish();
  void cancel();
  bool isComposing() const { return composed_.to > composed_.from; }
  // In the field's text; empty without a composition.
  const CefRange& composedRange() const { return composed_; }

  // The focused field's state, as the browser reports it. Each change notifies the view.
  void setMode(cef_text_input_mode_t mode);
  void setSelection(const CefString& text, const CefRange& range);
  void setCharacterBounds(const std::vector<CefRect>& characters);

  // Whether the focused element accepts input methods.
  bool acceptsText() const { return mode_ != CEF_TEXT_INPUT_MODE_NONE; }
  cef_text_input_mode_t mode() const { return mode_; }
  const CefString& selectedText() const { return selectedText_; }
  const CefRange& selectedRange() const { return selectedRange_; }
  // The position in the view of a character of the composition, else of the last known character or
  // the caret. Empty before the browser has reported one.
  CefRect boundsOf(std::size_t character) const;

 private:
  // Returns false if there was no composition.
  bool endComposition();
  CefRefPtr<CefBrowserHost> host() const;

  OsrView& view_;
  CefRange composed_;
  cef_text_input_mode_t mode_ = CEF_TEXT_INPUT_MODE_NONE;
  CefString selectedText_;
  CefRange selectedRange_;
  std::vector<CefRect> characterBounds_;
};

}  // namespace client
