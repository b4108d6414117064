#include "transfers/messages/message_handler.h"

#include "include/wrapper/cef_helpers.h"

namespace zantrio::messages {

bool CMessageHandlerBase::onMessage(const CefRefPtr<CefProcessMessage>& message) {
  CEF_REQUIRE_UI_THREAD();
  const auto entry = operations_.find(message->GetName().ToString());
  if (entry == operations_.end()) {
    return false;
  }
  (this->*entry->second)(message->GetArgumentList());
  return true;
}

void CMessageHandlerBase::attach(const QueryHandlerContext& /*context*/) {}

void CMessageHandlerBase::detach() {}

}  // namespace zantrio::messages
