// Assertions of the calling thread.
#ifndef CEF_INCLUDE_WRAPPER_CEF_HELPERS_H_
#define CEF_INCLUDE_WRAPPER_CEF_HELPERS_H_

#include <cassert>

#include "include/cef_task.h"

#define CEF_REQUIRE_UI_THREAD() assert(CefCurrentlyOn(TID_UI))
#define CEF_REQUIRE_IO_THREAD() assert(CefCurrentlyOn(TID_IO))
#define CEF_REQUIRE_FILE_BACKGROUND_THREAD() assert(CefCurrentlyOn(TID_FILE_BACKGROUND))
#define CEF_REQUIRE_FILE_USER_VISIBLE_THREAD() assert(CefCurrentlyOn(TID_FILE_USER_VISIBLE))
#define CEF_REQUIRE_FILE_USER_BLOCKING_THREAD() assert(CefCurrentlyOn(TID_FILE_USER_BLOCKING))
#define CEF_REQUIRE_RENDERER_THREAD() assert(CefCurrentlyOn(TID_RENDERER))

#endif  // CEF_INCLUDE_WRAPPER_CEF_HELPERS_H_
