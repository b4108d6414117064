#pragma once

#include <optional>
#include <string>
#include <vector>

#include "osr/view/osr_view.h"

namespace client {

// Text that an input method makes: hands it to the browser while it is composed and when it is
// finished, and keeps what an input method asks of the focused field. Without a browser, nothing
// happens. Ranges count UTF-16 units. Ownership: the view's, which must outlive it. Thread: UI.
class TextInput {
 public:
  using Underlines = std::vector<CefCompositionUnderline>;

  explicit TextInput(OsrView& view) : view_(view) {}
  TextInput(const TextInput&) = delete;
  TextInput& operator=(const TextInput&) = delete;

  // A composition takes the place of the one before it; an empty one cancels that. `selected` is in
  // the composition. `replaced`, a part of the field's text, gives way to it.
  void compose(const std::u16string& text, const Underlines& underlines, const CefRange& selected,
               std::optional<CefRange> replaced = std::nullopt);
  // Finished text takes the composition's place.
  void commit(const std::u16string& text, std::optional<CefRange> replaced = std::nullopt);
  // The composition stays as it is, as text.
  void finish();
  void cancel();
  bool isComposing() const { return composed_.to > composed_.from; }
  // Of the field's text; empty without a composition.
  const CefRange& composedRange() const { return composed_; }

  // What the browser tells of the focused field. The view hears of every change.
  void setMode(cef_text_input_mode_t mode);
  void setSelection(const CefString& text, const CefRange& range);
  void setPlaces(const std::vector<CefRect>& characters);

  // Whether the focused element takes text of input methods.
  bool isWanted() const { return mode_ != CEF_TEXT_INPUT_MODE_NONE; }
  cef_text_input_mode_t mode() const { return mode_; }
  const CefString& selectedText() const { return selectedText_; }
  const CefRange& selectedRange() const { return selectedRange_; }
  // Where a character of the composition is, or the last one that is known, or else the caret; in
  // the view. Empty before the browser has told.
  CefRect placeOf(std::size_t character) const;

 private:
  // Forgets the composition; false when there was none.
  bool endComposition();
  CefRefPtr<CefBrowserHost> host() const;

  OsrView& view_;
  CefRange composed_;
  cef_text_input_mode_t mode_ = CEF_TEXT_INPUT_MODE_NONE;
  CefString selectedText_;
  CefRange selectedRange_;
  std::vector<CefRect> places_;
};

}  // namespace client
