// Copying BGRA pixels into the bound texture.
#pragma once

#include "include/cef_base.h"

namespace client {

// Makes the texture anew from a whole buffer.
void uploadWhole(const void* buffer, const CefSize& size);

// Replaces the texture's rectangle `target` by the pixels of the buffer from `from` on. The length
// of the buffer's rows is set before.
void uploadPart(const void* buffer, const CefPoint& from, const CefRect& target);

}  // namespace client
