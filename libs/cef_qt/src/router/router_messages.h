// The process messages of a router, all of one name.
#pragma once

#include "include/cef_process_message.h"
#include "include/cef_values.h"

namespace cef_qt {

inline constexpr char kCanceledText[] = "The query has been canceled";
inline constexpr int kCanceledCode = -1;

// To the browser side: context id, query id, and for a query the request and whether it persists;
// without these two it is the end of the query.
struct QueryMessage {
  int context = 0;
  int query = 0;
  bool isCancel = false;
  CefString request;
  bool persistent = false;

  CefRefPtr<CefProcessMessage> make(const CefString& name) const;
  static QueryMessage read(const CefRefPtr<CefListValue>& arguments);
};

// To the render side: context id, query id, success, then the response, or code and text.
struct AnswerMessage {
  int context = 0;
  int query = 0;
  bool success = false;
  int code = 0;
  CefString text;

  CefRefPtr<CefProcessMessage> make(const CefString& name) const;
  static AnswerMessage read(const CefRefPtr<CefListValue>& arguments);
};

CefString messageName(const CefString& queryFunction);

}  // namespace cef_qt
