#include "base/process_message_impl.h"

namespace cef_qt {

CefRefPtr<ProcessMessage> ProcessMessage::takeForSending(
    const CefRefPtr<CefProcessMessage>& message) {
  auto* own = dynamic_cast<ProcessMessage*>(message.get());
  if (!own || !own->IsValid()) {
    return nullptr;
  }
  // The sender may have kept the argument list, so it becomes read-only.
  own->arguments_->setReadOnly();
  if (own->HasOneRef()) {
    return own;  // the sender has not kept the message
  }
  return new ProcessMessage(std::move(own->name_), std::move(own->arguments_));
}

CefRefPtr<CefProcessMessage> ProcessMessage::Copy() {
  if (!arguments_) {
    return nullptr;
  }
  return new ProcessMessage(name_, new ListValue(arguments_->snapshot()));
}

}  // namespace cef_qt

CefRefPtr<CefProcessMessage> CefProcessMessage::Create(const CefString& name) {
  return new cef_qt::ProcessMessage(name, new cef_qt::ListValue({}));
}
