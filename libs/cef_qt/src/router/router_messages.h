// The process messages of a router. All have the same name.
#pragma once

#include "include/cef_process_message.h"
#include "include/cef_values.h"

namespace cef_qt {

inline constexpr char kCanceledText[] = "The query has been canceled";
inline constexpr int kCanceledCode = -1;

// To the browser side. Arguments: context id and query id; for a query also the request and whether
// it is persistent. A message without these two cancels the query.
struct QueryMessage {
  int context = 0;
  int query = 0;
  bool isCancel = false;
  CefString request;
  bool persistent = false;

  CefRefPtr<CefProcessMessage> make(const CefString& name) const;
  static QueryMessage read(const CefRefPtr<CefListValue>& arguments);
};

// To the render side. Arguments: context id, query id and success; then the response, or the error
// code and text.
struct ResponseMessage {
  int context = 0;
  int query = 0;
  bool success = false;
  int code = 0;
  CefString text;

  CefRefPtr<CefProcessMessage> make(const CefString& name) const;
  static ResponseMessage read(const CefRefPtr<CefListValue>& arguments);
};

CefString messageName(const CefString& queryFunction);

}  // namespace cef_qt
