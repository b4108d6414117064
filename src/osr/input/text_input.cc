#include "osr/input/text_input.h"

#include <algorithm>
#include <limits>

namespace client {
namespace {

// The framework's value for no range.
CefRange rangeOrNone(const std::optional<CefRange>& range) {
  constexpr uint32_t kNone = std::numeric_limits<uint32_t>::max();
  return range.value_or(CefRange(kNone, kNone));
}

}  // namespace

void TextInput::compose(const std::u16string& text, const Underlines& underlines,
                        const CefRange& selected, std::optional<CefRange> replaced) {
  if (text.empty()) {
    cancel();
    return;
  }
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    // A new composition starts where the replaced text starts.
    const uint32_t from = isComposing() ? composed_.from : replaced.value_or(selectedRange_).from;
    composed_ = CefRange(from, from + static_cast<uint32_t>(text.size()));
    target->ImeSetComposition(text, underlines, rangeOrNone(replaced), selected);
  }
}

void TextInput::commit(const std::u16string& text, std::optional<CefRange> replaced) {
  endComposition();
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    target->ImeCommitText(text, rangeOrNone(replaced), 0);
  }
}

void TextInput::finish() {
  const CefRefPtr<CefBrowserHost> target = host();
  if (endComposition() && target) {
    target->ImeFinishComposingText(false);
  }
}

void TextInput::cancel() {
  const CefRefPtr<CefBrowserHost> target = host();
  if (endComposition() && target) {
    target->ImeCancelComposition();
  }
}

bool TextInput::endComposition() {
  const bool was = isComposing();
  composed_ = CefRange();
  return was;
}

void TextInput::setMode(cef_text_input_mode_t mode) {
  mode_ = mode;
  if (!acceptsText()) {
    endComposition();  // the field lost the focus, which ended the composition in the page
  }
  view_.textInputChanged();
}

void TextInput::setSelection(const CefString& text, const CefRange& range) {
  selectedText_ = text;
  selectedRange_ = range;
  view_.textInputChanged();
}

void TextInput::setCharacterBounds(const std::vector<CefRect>& characters) {
  characterBounds_ = characters;
  view_.textInputChanged();
}

CefRect TextInput::boundsOf(std::size_t character) const {
  return characterBounds_.empty()
             ? CefRect()
             : characterBounds_[std::min(character, characterBounds_.size() - 1)];
}

CefRefPtr<CefBrowserHost> TextInput::host() const {
  const CefRefPtr<CefBrowser> browser = view_.browser();
  return browser ? browser->GetHost() : nullptr;
}

}  // namespace client
