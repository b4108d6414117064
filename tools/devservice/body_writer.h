#pragma once

#include <cstdint>

#include "devservice/content.h"
#include "devservice/exchange.h"
#include "devservice/range.h"

namespace zantrio::devservice {

// Sends a part of a content as the response's body directly to the socket and applies the request's
// fault meanwhile. The response's header, with the part's length, must be set before.
void sendPart(CExchange& exchange, const IContent& content, const ByteRange& part);

}  // namespace zantrio::devservice
