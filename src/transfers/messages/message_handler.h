#pragma once

#include <map>
#include <string>

#include "include/cef_base.h"
#include "include/cef_process_message.h"
#include "include/cef_values.h"

namespace zantrio {
struct QueryHandlerContext;
}

namespace zantrio::messages {

// Receives process messages from the page's side, and follows the life of the browser.
// Ownership: counted references. Thread: UI.
class IMessageHandler : public virtual CefBaseRefCounted {
 public:
  // True when the message was for this handler.
  virtual bool onMessage(const CefRefPtr<CefProcessMessage>& message) = 0;
  // Hands over the browser and the managers; the handler keeps what it needs.
  virtual void attach(const QueryHandlerContext& context) = 0;
  // Undoes attach while the handler is still referenced. No event reaches the handler afterwards.
  virtual void detach() = 0;
};

// Dispatches process messages to the operations that a derived class has registered by name. The
// two transfer relays register none: the page sends its requests as queries, which the bridges'
// routers dispatch (BridgeRouters).
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
