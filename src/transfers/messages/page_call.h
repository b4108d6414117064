#pragma once

#include <json/value.h>

#include "include/cef_browser.h"

namespace zantrio::messages {

// Runs `function` + the JSON text + ");" in the browser's main frame; `function` ends in the
// opening parenthesis. Dropped without a word when there is no main frame. False then.
// Thread: UI.
bool callPage(const CefRefPtr<CefBrowser>& browser, const char* function,
              const Json::Value& argument);

}  // namespace zantrio::messages
