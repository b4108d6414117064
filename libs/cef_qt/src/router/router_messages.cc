#include "router/router_messages.h"

#include "include/wrapper/cef_message_router.h"

CefMessageRouterConfig::CefMessageRouterConfig()
    : js_query_function("cefQuery"),
      js_cancel_function("cefQueryCancel"),
      message_size_threshold(16 * 1024) {}

namespace cef_qt {

CefString messageName(const CefString& queryFunction) {
  return queryFunction.ToString16() + u"Msg";
}

CefRefPtr<CefProcessMessage> QueryMessage::make(const CefString& name) const {
  CefRefPtr<CefProcessMessage> message = CefProcessMessage::Create(name);
  CefRefPtr<CefListValue> arguments = message->GetArgumentList();
  arguments->SetInt(0, context);
  arguments->SetInt(1, query);
  if (!isCancel) {
    arguments->SetString(2, request);
    arguments->SetBool(3, persistent);
  }
  return message;
}

QueryMessage QueryMessage::read(const CefRefPtr<CefListValue>& arguments) {
  QueryMessage message;
  message.context = arguments->GetInt(0);
  message.query = arguments->GetInt(1);
  message.isCancel = arguments->GetSize() == 2;
  message.request = arguments->GetString(2);
  message.persistent = arguments->GetBool(3);
  return message;
}

CefRefPtr<CefProcessMessage> ResponseMessage::make(const CefString& name) const {
  CefRefPtr<CefProcessMessage> message = CefProcessMessage::Create(name);
  CefRefPtr<CefListValue> arguments = message->GetArgumentList();
  arguments->SetInt(0, context);
  arguments->SetInt(1, query);
  arguments->SetBool(2, success);
  if (success) {
    arguments->SetString(3, text);
  } else {
    arguments->SetInt(3, code);
    arguments->SetString(4, text);
  }
  return message;
}

ResponseMessage ResponseMessage::read(const CefRefPtr<CefListValue>& arguments) {
  ResponseMessage message;
  message.context = arguments->GetInt(0);
  message.query = arguments->GetInt(1);
  message.success = arguments->GetBool(2);
  message.code = message.success ? 0 : arguments->GetInt(3);
  message.text = arguments->GetString(message.success ? 3 : 4);
  return message;
}

}  // namespace cef_qt
