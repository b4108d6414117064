// The part of the framework's parser that the client uses.
#pragma once

#include "include/internal/cef_string.h"

// The MIME type of a file's extension, which has no dot; empty when it is unknown.
CefString CefGetMimeType(const CefString& extension);
