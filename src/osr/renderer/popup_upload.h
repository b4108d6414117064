// The part of a pop-up that lies in the page, copied into the bound texture.
#pragma once

#include "include/cef_base.h"

namespace client {

// `buffer` holds the whole pop-up of the given size, whose left upper corner is at `position` of
// the page, perhaps outside. All in pixels. A pop-up that is all outside copies nothing.
void uploadPopup(const CefPoint& position, const CefSize& size, const CefSize& page,
                 const void* buffer);

}  // namespace client
