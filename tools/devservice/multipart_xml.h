#pragma once

#include <string>
#include <vector>

#include "devservice/multipart_uploads.h"

namespace zantrio::devservice {

// The list of parts in a client's request to complete an upload, ETags without their quotes.
// Throws CHttpError (400 MalformedXML).
std::vector<PartClaim> parseCompletion(const std::string& xml);

// Which of an upload's parts to list.
struct PartsPage {
  unsigned after = 0;  // parts with larger numbers
  unsigned most = 1000;
};

// What the storage answers; texts are escaped.
std::string initiatedXml(const std::string& bucketId, const std::string& path,
                         const std::string& uploadId);
std::string partsXml(const std::string& bucketId, const std::string& path,
                     const std::string& uploadId, const CMultipartUploads::Parts& parts,
                     const PartsPage& page);
std::string completedXml(const std::string& bucketId, const std::string& path,
                         const std::string& quotedEtag);
std::string errorXml(const std::string& code, const std::string& message);

}  // namespace zantrio::devservice
