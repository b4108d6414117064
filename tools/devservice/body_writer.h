#pragma once

#include <cstdint>

#include "devservice/content.h"
#include "devservice/exchange.h"
#include "devservice/range.h"

namespace zantrio::devservice {

// Sends a part of a content as the answer's body, straight to the socket, and lets the request's
// fault happen on the way. The answer's header, with the part's length, must be filled already.
void sendPart(CExchange& exchange, const IContent& content, const ByteRange& part);

}  // namespace zantrio::devservice
