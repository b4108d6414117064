#pragma once

#include <string>

#include "devservice/exchange.h"
#include "devservice/message_store.h"
#include "devservice/multipart_uploads.h"

namespace zantrio::devservice {

// Multipart uploads, as of object stores, for a file of the object storage:
//   POST ?uploads                            initiates one
//   PUT ?partNumber=N&uploadId=ID            uploads a part
//   GET ?uploadId=ID                         lists the received parts
//   POST ?uploadId=ID                        completes with the listed parts
//   DELETE ?uploadId=ID                      aborts
// Responses and failures are XML with the codes of object stores.
// Thread: any. The caller has authorised the client for the file.
class CMultipartArea {
 public:
  CMultipartArea(CMessageStore& store, CMultipartUploads& uploads)
      : store_(store), uploads_(uploads) {}

  // Whether the request belongs to a multipart upload.
  static bool isMultipart(const CExchange& exchange);

  void handle(CExchange& exchange, const std::string& bucketId, const std::string& path);

 private:
  void route(CExchange& exchange, const std::string& bucketId, const std::string& path);
  void initiate(CExchange& exchange, const std::string& bucketId, const std::string& path);
  void putPart(CExchange& exchange, const std::string& uploadId);
  void listParts(CExchange& exchange, const std::string& uploadId, const std::string& path);
  void complete(CExchange& exchange, const std::string& bucketId, const std::string& path,
                const std::string& uploadId);

  CMessageStore& store_;
  CMultipartUploads& uploads_;
};

}  // namespace zantrio::devservice
