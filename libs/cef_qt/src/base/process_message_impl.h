// Messages between the browser side and the render side, which live in one process here.
#pragma once

#include "base/values_impl.h"
#include "include/cef_process_message.h"

namespace cef_qt {

class ProcessMessage final : public CefProcessMessage {
 public:
  ProcessMessage(CefString name, CefRefPtr<ListValue> arguments)
      : name_(std::move(name)), arguments_(std::move(arguments)) {}

  // Takes the contents out of a message that is sent, which becomes invalid; null when it was
  // invalid already, or is not one of the framework's.
  static CefRefPtr<ProcessMessage> takeForSending(const CefRefPtr<CefProcessMessage>& message);

  bool IsValid() override { return arguments_.get() != nullptr; }
  bool IsReadOnly() override { return arguments_ && arguments_->IsReadOnly(); }
  CefRefPtr<CefProcessMessage> Copy() override;
  CefString GetName() override { return name_; }
  CefRefPtr<CefListValue> GetArgumentList() override { return arguments_; }

 private:
  CefString name_;
  CefRefPtr<ListValue> arguments_;
  IMPLEMENT_REFCOUNTING(ProcessMessage);
};

}  // namespace cef_qt
