// Copying BGRA pixels into the bound texture.
#pragma once

#include "include/cef_base.h"

namespace client {

// Reallocates the texture from a complete buffer.
void uploadWhole(const void* buffer, const CefSize& size);

// Replaces the rectangle `target` of the texture with pixels of the buffer, starting at `from`. The
// caller sets GL_UNPACK_ROW_LENGTH first.
void uploadPart(const void* buffer, const CefPoint& from, const CefRect& target);

// Replaces the part of the texture that a pop-up covers. `buffer` holds the whole pop-up of the
// given size, whose left upper corner is at `position` of the page, perhaps outside. All in pixels.
// A pop-up that is all outside copies nothing.
void uploadPopup(const CefPoint& position, const CefSize& size, const CefSize& page,
                 const void* buffer);

}  // namespace client
