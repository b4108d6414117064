#pragma once

#include <cstdint>

#include "devservice/exchange.h"
#include "devservice/file_io.h"
#include "devservice/range.h"

namespace zantrio::devservice {

// Sends a part of a file as the answer's body, straight to the socket, and lets the request's
// fault happen on the way. The answer's header, with the part's length, must be filled already.
void sendFilePart(CExchange& exchange, const CFile& file, const ByteRange& part);

}  // namespace zantrio::devservice
