#pragma once

#include "osr/input/system_event.h"

namespace client {

// Turns key events into the browser's; without a browser, nothing happens. Ownership: the view's,
// which must outlive it. Thread: UI.
class KeyInput {
 public:
  explicit KeyInput(OsrView& view) : view_(view) {}
  KeyInput(const KeyInput&) = delete;
  KeyInput& operator=(const KeyInput&) = delete;

  // A press: a raw press, and the character that it types, if any; a text of more than one UTF-16
  // unit follows as an input method's.
  void sendKeyDown(const SystemEvent& event);
  // A press that an input method used up: only that there was one.
  void sendUsedUpKeyDown(const SystemEvent& event);
  void sendKeyUp(const SystemEvent& event);
  // A change of the modifier keys: a press or a release, by the key and the state after it.
  void sendFlagsChanged(const SystemEvent& event);

 private:
  // Null without a browser.
  CefRefPtr<CefBrowserHost> host() const;

  OsrView& view_;
};

}  // namespace client
