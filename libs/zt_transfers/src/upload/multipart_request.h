#pragma once

#include <cstdint>
#include <string>

#include "engine/upload_session.h"
#include "http/text_request.h"

namespace zt_transfers {

// The requests of a multipart upload, except for the bodies of its parts.

CTextRequest::Request initiationRequest(const UploadSession& session, const std::string& proxy);
// Lists the parts after number `after`.
CTextRequest::Request listRequest(const UploadSession& session, std::uint32_t after,
                                  const std::string& proxy);
CTextRequest::Request completionRequest(const UploadSession& session, const std::string& proxy);
CTextRequest::Request abortRequest(const UploadSession& session, const std::string& proxy);
// HEAD of the object.
CTextRequest::Request lookUpRequest(const UploadSession& session, const std::string& proxy);

std::string partUrl(const UploadSession& session, std::uint32_t number);
// The page's headers without those that describe the whole content.
HttpHeaders partHeaders(const UploadSession& session);

}  // namespace zt_transfers
