#pragma once

#include <cstdint>
#include <string>

#include "engine/upload_session.h"
#include "upload/store_request.h"

namespace zt_transfers {

// The requests of an upload in parts, but for the parts' own bodies.

CStoreRequest::Request initiationRequest(const UploadSession& session, const std::string& proxy);
// The parts behind number `after`.
CStoreRequest::Request listRequest(const UploadSession& session, std::uint32_t after,
                                   const std::string& proxy);
CStoreRequest::Request completionRequest(const UploadSession& session, const std::string& proxy);
CStoreRequest::Request abortRequest(const UploadSession& session, const std::string& proxy);
// What there is at the place now.
CStoreRequest::Request lookUpRequest(const UploadSession& session, const std::string& proxy);

std::string partUrl(const UploadSession& session, std::uint32_t number);
// The page's headers without those that are about the content as a whole.
HttpHeaders partHeaders(const UploadSession& session);

}  // namespace zt_transfers
