#pragma once

#include <string>

#include "devservice/exchange.h"
#include "devservice/message_store.h"
#include "devservice/multipart_area.h"
#include "devservice/received_messages.h"
#include "devservice/url_signer.h"

namespace zantrio::devservice {

// The object storage, /storage/<bucket>/<path>: PUT, GET, HEAD and DELETE of a message's files with
// the message's token (header X-Zantrio-Token, or "token" in the URL's query); GET and HEAD also
// with a signed URL. Thread: any.
class CStorageArea {
 public:
  // `multipart` may be null: then there are no multipart uploads.
  CStorageArea(CMessageStore& store, CReceivedMessages& received, const CUrlSigner& signer,
               CMultipartArea* multipart)
      : store_(store), received_(received), signer_(signer), multipart_(multipart) {}

  void handle(CExchange& exchange);

 private:
  struct Target {
    std::string bucketId;
    std::string path;
  };

  static Target parseTarget(const CExchange& exchange);
  void authorize(const CExchange& exchange, const Target& target, bool forWriting);
  void put(CExchange& exchange, const Target& target);
  void get(CExchange& exchange, const Target& target);

  CMessageStore& store_;
  CReceivedMessages& received_;
  const CUrlSigner& signer_;
  CMultipartArea* multipart_;
};

}  // namespace zantrio::devservice
