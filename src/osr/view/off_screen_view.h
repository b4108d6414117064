#pragma once

#include <functional>
#include <memory>
#include <string>

#include "osr/view/osr_view.h"

namespace client {

// Where a view gets its browser: null before there is one.
using BrowserProvider = std::function<CefRefPtr<CefBrowser>()>;

struct OffScreenViewOptions {
  std::string title;  // UTF-8
  CefRect bounds;     // of the page, in points
  bool transparent = false;
  bool showUpdateRect = false;
  BrowserProvider browserProvider;
};

// The system's window with a view for an off-screen browser, shown. It keeps itself until its
// browser is closed. Null when the system cannot draw with OpenGL; `error` then says why.
std::shared_ptr<OsrView> createOffScreenView(const OffScreenViewOptions& options,
                                             std::string& error);

// The window that the framework is told of as the browser's parent.
CefWindowHandle windowOf(const OsrView& view);

}  // namespace client
