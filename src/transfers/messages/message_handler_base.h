#pragma once

#include <map>
#include <string>

#include "include/cef_values.h"
#include "transfers/messages/message_handler.h"

namespace zantrio::messages {

// Finds the operation for a process message by the message's name.
class CMessageHandlerBase : public IMessageHandler {
 public:
  bool onMessage(const CefRefPtr<CefProcessMessage>& message) override;
  // Does nothing.
  void attach(const QueryHandlerContext& context) override;
  // Does nothing.
  void detach() override;

 protected:
  using Operation = void (CMessageHandlerBase::*)(const CefRefPtr<CefListValue>& arguments);

  template <class Handler>
  void registerMessage(const std::string& name,
                       void (Handler::*operation)(const CefRefPtr<CefListValue>& arguments)) {
    operations_[name] = static_cast<Operation>(operation);
  }

 private:
  std::map<std::string, Operation> operations_;
};

}  // namespace zantrio::messages
