// Queries of a page to the program, and their answers.
//
// The page calls `id = window[query]({request, persistent, onSuccess, onFailure})`. The renderer
// side of the router sends the request as a process message, named after the query function, to the
// client of the browser, which offers it to its browser-side router; that asks its handlers. The
// answer travels back the same way. `window[cancel](id)` gives a query up.
#ifndef CEF_INCLUDE_WRAPPER_CEF_MESSAGE_ROUTER_H_
#define CEF_INCLUDE_WRAPPER_CEF_MESSAGE_ROUTER_H_

#include <cstdint>

#include "include/base/cef_ref_counted.h"
#include "include/cef_base.h"
#include "include/cef_browser.h"
#include "include/cef_process_message.h"
#include "include/cef_v8.h"

// Both sides of one router use equal configurations.
struct CefMessageRouterConfig {
  CefMessageRouterConfig();

  CefString js_query_function;   // "cefQuery"
  CefString js_cancel_function;  // "cefQueryCancel"
  // Accepted for the interface's sake: messages do not leave the process here.
  size_t message_size_threshold;
};

// Answers one query. Usable on any thread. A callback that is released unanswered fails its query.
class CefMessageRouterBrowserSideCallback : public CefBaseRefCounted {
 public:
  // Calls the page's onSuccess; a persistent query may be answered many times.
  virtual void Success(const CefString& response) = 0;
  // Calls the page's onFailure and ends the query.
  virtual void Failure(int error_code, const CefString& error_message) = 0;
};

// Lives on the UI thread.
class CefMessageRouterBrowserSide : public base::RefCountedThreadSafe<CefMessageRouterBrowserSide> {
 public:
  using Callback = CefMessageRouterBrowserSideCallback;

  // Owned by the program; removed from the router before it is deleted. Called on the UI thread.
  class Handler {
   public:
    using Callback = CefMessageRouterBrowserSideCallback;

    virtual ~Handler() = default;

    // True when the handler takes the query: it then answers through the callback, at once or
    // later. Otherwise the next handler is asked.
    virtual bool OnQuery(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                         int64_t /*query_id*/, const CefString& /*request*/, bool /*persistent*/,
                         CefRefPtr<Callback> /*callback*/) {
      return false;
    }

    // A pending query was given up; its callback has no effect any more.
    virtual void OnQueryCanceled(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                                 int64_t /*query_id*/) {}
  };

  // Null when the configuration lacks a function name.
  static CefRefPtr<CefMessageRouterBrowserSide> Create(const CefMessageRouterConfig& config);

  // Adds a handler before (`first`) or after the others; false when it is there already.
  virtual bool AddHandler(Handler* handler, bool first) = 0;
  // Removes a handler and cancels its pending queries; false when it is not there.
  virtual bool RemoveHandler(Handler* handler) = 0;
  // Cancels the pending queries of a browser and a handler; null stands for any.
  virtual void CancelPending(CefRefPtr<CefBrowser> browser, Handler* handler) = 0;
  virtual int GetPendingCount(CefRefPtr<CefBrowser> browser, Handler* handler) = 0;

  // The client's notifications, which it passes on.
  virtual void OnBeforeClose(CefRefPtr<CefBrowser> browser) = 0;
  virtual void OnRenderProcessTerminated(CefRefPtr<CefBrowser> browser) = 0;
  virtual void OnBeforeBrowse(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame) = 0;
  // True when the message is one of this router's.
  virtual bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                        CefProcessId source_process,
                                        CefRefPtr<CefProcessMessage> message) = 0;

 protected:
  friend class base::RefCountedThreadSafe<CefMessageRouterBrowserSide>;
  virtual ~CefMessageRouterBrowserSide() = default;
};

// Lives on TID_RENDERER.
class CefMessageRouterRendererSide
    : public base::RefCountedThreadSafe<CefMessageRouterRendererSide> {
 public:
  // Null when the configuration lacks a function name.
  static CefRefPtr<CefMessageRouterRendererSide> Create(const CefMessageRouterConfig& config);

  // Queries of a browser and a context that wait for their answer; null stands for any.
  virtual int GetPendingCount(CefRefPtr<CefBrowser> browser, CefRefPtr<CefV8Context> context) = 0;

  // The render process handler's notifications, which it passes on. The first installs the query
  // functions in the document.
  virtual void OnContextCreated(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                CefRefPtr<CefV8Context> context) = 0;
  virtual void OnContextReleased(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                 CefRefPtr<CefV8Context> context) = 0;
  // True when the message is one of this router's.
  virtual bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                        CefProcessId source_process,
                                        CefRefPtr<CefProcessMessage> message) = 0;

 protected:
  friend class base::RefCountedThreadSafe<CefMessageRouterRendererSide>;
  virtual ~CefMessageRouterRendererSide() = default;
};

#endif  // CEF_INCLUDE_WRAPPER_CEF_MESSAGE_ROUTER_H_
