#include "osr/input/key_input.h"

#include "include/cef_frame.h"
#include "osr/input/system_event.h"
#include "osr/input/text_input.h"

namespace client {
namespace {

// macOS uses private-use characters for function and cursor keys.
bool typesText(char16_t character) {
  constexpr char16_t kFirstFunctionKey = 0xF700;
  constexpr char16_t kLastFunctionKey = 0xF8FF;
  return character != 0 && (character < kFirstFunctionKey || character > kLastFunctionKey);
}

// A key event holds one UTF-16 unit.
bool exceedsKeyEvent(const SystemEvent& event) {
  return event.characters.size() > 1;
}

CefKeyEvent recordOf(const SystemEvent& event, cef_key_event_type_t type) {
  CefKeyEvent record;
  record.type = type;
  getKeyEvent(record, event);
  if (exceedsKeyEvent(event)) {
    record.character = 0;
    record.unmodified_character = 0;
  }
  return record;
}

void run(CefFrame& frame, EditCommand command) {
  switch (command) {
    case EditCommand::kUndo:
      return frame.Undo();
    case EditCommand::kRedo:
      return frame.Redo();
    case EditCommand::kCut:
      return frame.Cut();
    case EditCommand::kCopy:
      return frame.Copy();
    case EditCommand::kPaste:
      return frame.Paste();
    case EditCommand::kDelete:
      return frame.Delete();
    case EditCommand::kSelectAll:
      return frame.SelectAll();
  }
}

}  // namespace

void KeyInput::sendKeyDown(const SystemEvent& event) {
  const CefRefPtr<CefBrowserHost> target = host();
  if (!target) {
    return;
  }
  CefKeyEvent record = recordOf(event, KEYEVENT_RAWKEYDOWN);
  target->SendKeyEvent(record);
  if (event.kind == EventKind::kKeyDown && exceedsKeyEvent(event)) {
    view_.textInput().commit(event.characters);
  } else if (typesText(record.character)) {
    record.type = KEYEVENT_CHAR;
    target->SendKeyEvent(record);
  }
}

void KeyInput::sendConsumedKeyDown(const SystemEvent& event) {
  constexpr int kConsumedKey = 0xE5;  // VK_PROCESSKEY, on all systems
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    CefKeyEvent record = recordOf(event, KEYEVENT_RAWKEYDOWN);
    record.windows_key_code = kConsumedKey;
    record.character = 0;
    record.unmodified_character = 0;
    target->SendKeyEvent(record);
  }
}

void KeyInput::sendKeyUp(const SystemEvent& event) {
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    target->SendKeyEvent(recordOf(event, KEYEVENT_KEYUP));
  }
}

void KeyInput::sendFlagsChanged(const SystemEvent& event) {
  if (isKeyUpEvent(event)) {
    sendKeyUp(event);
  } else {
    sendKeyDown(event);
  }
}

CefRefPtr<CefBrowserHost> KeyInput::host() const {
  const CefRefPtr<CefBrowser> browser = view_.browser();
  return browser ? browser->GetHost() : nullptr;
}

void runEditCommand(const OsrView& view, EditCommand command) {
  const CefRefPtr<CefBrowser> browser = view.browser();
  const CefRefPtr<CefFrame> frame = browser ? browser->GetFocusedFrame() : nullptr;
  if (frame) {
    run(*frame, command);
  }
}

}  // namespace client
