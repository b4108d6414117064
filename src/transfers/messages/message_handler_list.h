#pragma once

#include <vector>

#include "transfers/messages/message_handler.h"

namespace zantrio::messages {

// The relays of transfer events. One list per process. Thread: UI.
class CMessageHandlerList {
 public:
  static CMessageHandlerList& instance();

  // Replaces the relays with a new upload and a new download relay.
  void fill();
  void attach(const QueryHandlerContext& context);
  // True when a relay handled the message.
  bool onMessage(const CefRefPtr<CefProcessMessage>& message);
  // Detaches and releases the relays; tasks that they have posted still run.
  void clear();

 private:
  std::vector<CefRefPtr<IMessageHandler>> handlers_;
};

}  // namespace zantrio::messages
