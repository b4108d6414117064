#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "http/http_response.h"

namespace zt_transfers {

using HttpHeaders = std::vector<std::pair<std::string, std::string>>;

bool isRedirect(long status);

// Where the answer to a request for `url` sends the client: an absolute http or https URL.
// Nothing when it names no place, another protocol, or a step from https down to http.
std::optional<std::string> redirectTarget(const std::string& url, const HttpResponse& response);

// The headers to repeat a request with at its new place: another server gets no credentials.
HttpHeaders headersAfterRedirect(const HttpHeaders& headers, std::string_view fromUrl,
                                 std::string_view toUrl);

}  // namespace zt_transfers
