#pragma once

#include <memory>

#include "include/cef_base.h"
#include "osr/client_osr_handler.h"

namespace client {

// Ties the render handler to its view when a browser is created. Thread: UI.
class OSRWindow : public CefBaseRefCounted {
 public:
  static CefRefPtr<OSRWindow> Create(const std::shared_ptr<OsrView>& view) {
    return new OSRWindow(view);
  }
  OSRWindow(const OSRWindow&) = delete;
  OSRWindow& operator=(const OSRWindow&) = delete;

  // What the browser's client hands to the framework.
  CefRefPtr<RenderHandler> GetRenderHandler() const { return handler_; }

 private:
  explicit OSRWindow(const std::shared_ptr<OsrView>& view) : handler_(new ClientOSRHandler(view)) {}
  ~OSRWindow() override = default;

  const CefRefPtr<RenderHandler> handler_;

  IMPLEMENT_REFCOUNTING(OSRWindow);
};

}  // namespace client
