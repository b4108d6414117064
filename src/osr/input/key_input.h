#pragma once

#include "osr/input/system_event.h"
#include "osr/view/osr_view.h"

namespace client {

// Converts key events for the browser; without a browser it does nothing. Ownership: the view's,
// which must outlive it. Thread: UI.
class KeyInput {
 public:
  explicit KeyInput(OsrView& view) : view_(view) {}
  KeyInput(const KeyInput&) = delete;
  KeyInput& operator=(const KeyInput&) = delete;

  // Sends a raw key press and the character it types, if any. Text of more than one UTF-16 unit is
  // committed as an input method's.
  void sendKeyDown(const SystemEvent& event);
  // A press that an input method consumed: the browser learns only that a key was pressed.
  void sendConsumedKeyDown(const SystemEvent& event);
  void sendKeyUp(const SystemEvent& event);
  // A modifier key changed: a press or a release, depending on the key and the modifiers after it.
  void sendFlagsChanged(const SystemEvent& event);

 private:
  // Null without a browser.
  CefRefPtr<CefBrowserHost> host() const;

  OsrView& view_;
};

// The commands of edit menus and edit keys.
enum class EditCommand { kUndo, kRedo, kCut, kCopy, kPaste, kDelete, kSelectAll };

// Runs the command in the browser's focused frame; without a browser it does nothing. Thread: UI.
void runEditCommand(const OsrView& view, EditCommand command);

}  // namespace client
