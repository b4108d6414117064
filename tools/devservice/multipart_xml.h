#pragma once

#include <string>
#include <vector>

#include "devservice/multipart_uploads.h"

namespace zantrio::devservice {

// Parses the list of parts in a completion request; ETags without their quotes.
// Throws CHttpError (400 MalformedXML).
std::vector<ListedPart> parseCompletion(const std::string& xml);

// The part of an upload's list to return.
struct PartsPage {
  unsigned after = 0;  // parts with larger numbers
  unsigned maxParts = 1000;
};

// The storage's responses; texts are escaped.
std::string initiatedXml(const std::string& bucketId, const std::string& path,
                         const std::string& uploadId);
std::string partsXml(const std::string& bucketId, const std::string& path,
                     const std::string& uploadId, const CMultipartUploads::Parts& parts,
                     const PartsPage& page);
std::string completedXml(const std::string& bucketId, const std::string& path,
                         const std::string& quotedEtag);
std::string errorXml(const std::string& code, const std::string& message);

}  // namespace zantrio::devservice
