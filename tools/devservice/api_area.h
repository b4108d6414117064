#pragma once

#include <string>

#include "devservice/exchange.h"
#include "devservice/message_store.h"
#include "devservice/multipart_uploads.h"
#include "devservice/progress_reports.h"
#include "devservice/url_signer.h"

namespace zantrio::devservice {

// The JSON API of sending, below /api; see docs/service-api.md. Thread: any.
class CApiArea {
 public:
  CApiArea(CMessageStore& store, CMultipartUploads& uploads, CProgressReports& reports,
           const CUrlSigner& signer)
      : store_(store), uploads_(uploads), reports_(reports), signer_(signer) {}

  void handle(CExchange& exchange);

 private:
  void status(CExchange& exchange);
  void messages(CExchange& exchange);
  void message(CExchange& exchange, const std::string& bucketId);
  void files(CExchange& exchange, const std::string& bucketId);
  void createMessage(CExchange& exchange);
  void announceFiles(CExchange& exchange, const std::string& bucketId);
  void progress(CExchange& exchange, const std::string& bucketId);

  CMessageStore& store_;
  CMultipartUploads& uploads_;
  CProgressReports& reports_;
  const CUrlSigner& signer_;
};

}  // namespace zantrio::devservice
