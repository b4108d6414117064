// Messages between the browser side and the render side. Both run in one process here.
#pragma once

#include "base/values_impl.h"
#include "include/cef_process_message.h"

namespace cef_qt {

class ProcessMessage final : public CefProcessMessage {
 public:
  ProcessMessage(CefString name, CefRefPtr<ListValue> arguments)
      : name_(std::move(name)), arguments_(std::move(arguments)) {}

  // Moves the contents of a message out for sending; the message becomes invalid. Null if it was
  // invalid or was not created by this library.
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
