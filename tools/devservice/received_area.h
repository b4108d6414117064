#pragma once

#include <string>

#include "devservice/exchange.h"
#include "devservice/received_messages.h"
#include "devservice/url_signer.h"

namespace zantrio::devservice {

// The JSON API of received messages, below /api/received; see docs/service-api.md. Thread: any.
class CReceivedArea {
 public:
  // `urlLifetime`: how long a download URL is valid, seconds.
  CReceivedArea(CReceivedMessages& messages, const CUrlSigner& signer, std::uint64_t urlLifetime)
      : messages_(messages), signer_(signer), urlLifetime_(urlLifetime) {}

  void handle(CExchange& exchange);

 private:
  void list(CExchange& exchange);
  void files(CExchange& exchange, const std::string& bucketId);
  void downloads(CExchange& exchange, const std::string& bucketId);
  Json::Value downloadDetails(const CExchange& exchange, const std::string& bucketId,
                              const std::string& path) const;

  CReceivedMessages& messages_;
  const CUrlSigner& signer_;
  const std::uint64_t urlLifetime_;
};

}  // namespace zantrio::devservice
