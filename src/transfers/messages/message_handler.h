#pragma once

#include "include/cef_base.h"
#include "include/cef_process_message.h"

namespace zantrio {
struct QueryHandlerContext;
}

namespace zantrio::messages {

// Takes part in the messages between the page's side and the program.
// Ownership: counted references. Thread: UI.
class IMessageHandler : public virtual CefBaseRefCounted {
 public:
  // True when the message was for this handler.
  virtual bool onMessage(const CefRefPtr<CefProcessMessage>& message) = 0;
  // Hands over the browser and the managers; the handler keeps what it needs.
  virtual void attach(const QueryHandlerContext& context) = 0;
  // Ends what attach began, while the handler is still referenced: nothing new reaches it
  // afterwards.
  virtual void detach() = 0;
};

}  // namespace zantrio::messages
