#include "transfers/messages/message_handler_list.h"

#include "include/wrapper/cef_helpers.h"
#include "transfers/messages/message_handler_download_manager.h"
#include "transfers/messages/message_handler_upload_manager.h"

namespace zantrio::messages {

CMessageHandlerList& CMessageHandlerList::instance() {
  static CMessageHandlerList list;
  return list;
}

void CMessageHandlerList::fill() {
  CEF_REQUIRE_UI_THREAD();
  clear();
  handlers_.push_back(new CMessageHandlerUploadManager);
  handlers_.push_back(new CMessageHandlerDownloadManager);
}

void CMessageHandlerList::attach(const QueryHandlerContext& context) {
  CEF_REQUIRE_UI_THREAD();
  for (const CefRefPtr<IMessageHandler>& handler : handlers_) {
    handler->attach(context);
  }
}

bool CMessageHandlerList::onMessage(const CefRefPtr<CefProcessMessage>& message) {
  CEF_REQUIRE_UI_THREAD();
  for (const CefRefPtr<IMessageHandler>& handler : handlers_) {
    if (handler->onMessage(message)) {
      return true;
    }
  }
  return false;
}

void CMessageHandlerList::clear() {
  CEF_REQUIRE_UI_THREAD();
  for (const CefRefPtr<IMessageHandler>& handler : handlers_) {
    handler->detach();
  }
  handlers_.clear();
}

}  // namespace zantrio::messages
