#include "osr/input/key_input.h"

#include "osr/input/event_flags.h"
#include "osr/input/text_input.h"

namespace client {
namespace {

// macOS gives its function and cursor keys characters of a private range.
bool typesText(char16_t character) {
  constexpr char16_t kFirstFunctionKey = 0xF700;
  constexpr char16_t kLastFunctionKey = 0xF8FF;
  return character != 0 && (character < kFirstFunctionKey || character > kLastFunctionKey);
}

// A key's record has room for one UTF-16 unit.
bool isMoreThanAKeyTells(const SystemEvent& event) {
  return event.characters.size() > 1;
}

CefKeyEvent recordOf(const SystemEvent& event, cef_key_event_type_t type) {
  CefKeyEvent record;
  record.type = type;
  getKeyEvent(record, event);
  if (isMoreThanAKeyTells(event)) {
    record.character = 0;
    record.unmodified_character = 0;
  }
  return record;
}

}  // namespace

void KeyInput::sendKeyDown(const SystemEvent& event) {
  const CefRefPtr<CefBrowserHost> target = host();
  if (!target) {
    return;
  }
  CefKeyEvent record = recordOf(event, KEYEVENT_RAWKEYDOWN);
  target->SendKeyEvent(record);
  if (event.kind == EventKind::kKeyDown && isMoreThanAKeyTells(event)) {
    view_.textInput().commit(event.characters);
  } else if (typesText(record.character)) {
    record.type = KEYEVENT_CHAR;
    target->SendKeyEvent(record);
  }
}

void KeyInput::sendUsedUpKeyDown(const SystemEvent& event) {
  constexpr int kUsedUpKey = 0xE5;  // as the browser's engine knows it on all systems
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    CefKeyEvent record = recordOf(event, KEYEVENT_RAWKEYDOWN);
    record.windows_key_code = kUsedUpKey;
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

}  // namespace client
