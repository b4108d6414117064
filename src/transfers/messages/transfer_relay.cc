#include "transfers/messages/transfer_relay.h"

#include "bridge/json_text.h"
#include "include/cef_frame.h"

namespace zantrio::messages {

bool callPage(const CefRefPtr<CefBrowser>& browser, const std::string& function,
              const Json::Value& argument) {
  const CefRefPtr<CefFrame> frame = browser ? browser->GetMainFrame() : nullptr;
  if (!frame) {
    return false;
  }
  frame->ExecuteJavaScript(function + writeCompactJson(argument) + ");", frame->GetURL(), 0);
  return true;
}

}  // namespace zantrio::messages
