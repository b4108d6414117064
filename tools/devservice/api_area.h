#pragma once

#include <string>

#include "devservice/exchange.h"
#include "devservice/message_store.h"

namespace zantrio::devservice {

// The JSON API below /api, see docs/service-api.md. Thread: any.
class CApiArea {
 public:
  explicit CApiArea(CMessageStore& store) : store_(store) {}

  void handle(CExchange& exchange);

 private:
  void status(CExchange& exchange);
  void messages(CExchange& exchange);
  void message(CExchange& exchange, const std::string& bucketId);
  void files(CExchange& exchange, const std::string& bucketId);
  void createMessage(CExchange& exchange);
  void announceFiles(CExchange& exchange, const std::string& bucketId);

  CMessageStore& store_;
};

}  // namespace zantrio::devservice
