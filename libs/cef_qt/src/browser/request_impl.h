// A navigation's request.
#pragma once

#include "include/cef_request.h"

namespace cef_qt {

class Request final : public CefRequest {
 public:
  explicit Request(CefString url) : url_(std::move(url)) {}

  CefString GetURL() override { return url_; }
  CefString GetMethod() override { return "GET"; }

 private:
  const CefString url_;
  IMPLEMENT_REFCOUNTING(Request);
};

}  // namespace cef_qt
