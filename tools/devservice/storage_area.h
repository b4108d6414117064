#pragma once

#include <string>

#include "devservice/exchange.h"
#include "devservice/message_store.h"

namespace zantrio::devservice {

// The object storage, /storage/<bucket>/<path>: PUT, GET, HEAD and DELETE of a message's files,
// for who has the message's token (header X-Zantrio-Token, or "token" in the URL's query).
// Thread: any.
class CStorageArea {
 public:
  explicit CStorageArea(CMessageStore& store) : store_(store) {}

  void handle(CExchange& exchange);

 private:
  struct Target {
    std::string bucketId;
    std::string path;
  };

  static Target parseTarget(const CExchange& exchange);
  void put(CExchange& exchange, const Target& target);
  void get(CExchange& exchange, const Target& target);

  CMessageStore& store_;
};

}  // namespace zantrio::devservice
