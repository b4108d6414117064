#pragma once

#include <string>

#include "devservice/exchange.h"
#include "devservice/message_store.h"
#include "devservice/multipart_uploads.h"

namespace zantrio::devservice {

// Uploads in parts, as object stores offer them, for a file of the object storage:
//   POST ?uploads                            begins one
//   PUT ?partNumber=N&uploadId=ID            a part
//   GET ?uploadId=ID                         lists the parts that are there
//   POST ?uploadId=ID                        puts the listed parts together
//   DELETE ?uploadId=ID                      aborts
// Answers and failures are XML with the codes that clients of object stores know.
// Thread: any. The caller has checked that the client may do this to the file.
class CMultipartArea {
 public:
  CMultipartArea(CMessageStore& store, CMultipartUploads& uploads)
      : store_(store), uploads_(uploads) {}

  // Whether the request is about an upload in parts.
  static bool concerns(const CExchange& exchange);

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
