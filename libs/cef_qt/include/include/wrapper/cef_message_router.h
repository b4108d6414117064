// Queries of a page to the program and the responses.
//
// The page calls `id = window[query]({request, persistent, onSuccess, onFailure})`. The renderer
// side of the router sends the request as a process message, named after the query function, to the
// browser's client. The client passes it to its browser-side router, which asks its handlers. The
// response takes the same way back. `window[cancel](id)` cancels a query.
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
  // Without effect here, because messages do not leave the process.
  size_t message_size_threshold;
};

// Responds to one query. Thread-safe. Releasing the callback without a response fails the query.
class CefMessageRouterBrowserSideCallback : public CefBaseRefCounted {
 public:
  // Calls the page's onSuccess; for a persistent query any number of times.
  virtual void Success(const CefString& response) = 0;
  // Calls the page's onFailure and ends the query.
  virtual void Failure(int error_code, const CefString& error_message) = 0;
};

// UI thread.
class CefMessageRouterBrowserSide : public base::RefCountedThreadSafe<CefMessageRouterBrowserSide> {
 public:
  using Callback = CefMessageRouterBrowserSideCallback;

  // Owned by the program, which removes it from the router before deleting it. UI thread.
  class Handler {
   public:
    using Callback = CefMessageRouterBrowserSideCallback;

    virtual ~Handler() = default;

    // True if the handler accepts the query: it responds through the callback, inside the call or
    // later. Otherwise the next handler is asked.
    virtual bool OnQuery(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                         int64_t /*query_id*/, const CefString& /*request*/, bool /*persistent*/,
                         CefRefPtr<Callback> /*callback*/) {
      return false;
    }

    // A pending query was canceled; its callback no longer has an effect.
    virtual void OnQueryCanceled(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                                 int64_t /*query_id*/) {}
  };

  // Null if the configuration lacks a function name.
  static CefRefPtr<CefMessageRouterBrowserSide> Create(const CefMessageRouterConfig& config);

  // Adds a handler before (`first`) or after the others. False if it was added already.
  virtual bool AddHandler(Handler* handler, bool first) = 0;
  // Removes a handler and cancels its pending queries. False if it was not added.
  virtual bool RemoveHandler(Handler* handler) = 0;
  // Cancels the pending queries of a browser and a handler; null matches any.
  virtual void CancelPending(CefRefPtr<CefBrowser> browser, Handler* handler) = 0;
  virtual int GetPendingCount(CefRefPtr<CefBrowser> browser, Handler* handler) = 0;

  // To be called from the client's methods of the same names.
  virtual void OnBeforeClose(CefRefPtr<CefBrowser> browser) = 0;
  virtual void OnRenderProcessTerminated(CefRefPtr<CefBrowser> browser) = 0;
  virtual void OnBeforeBrowse(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame) = 0;
  // True if the message belongs to this router.
  virtual bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                        CefProcessId source_process,
                                        CefRefPtr<CefProcessMessage> message) = 0;

 protected:
  friend class base::RefCountedThreadSafe<CefMessageRouterBrowserSide>;
  virtual ~CefMessageRouterBrowserSide() = default;
};

// TID_RENDERER.
class CefMessageRouterRendererSide
    : public base::RefCountedThreadSafe<CefMessageRouterRendererSide> {
 public:
  // Null if the configuration lacks a function name.
  static CefRefPtr<CefMessageRouterRendererSide> Create(const CefMessageRouterConfig& config);

  // The pending queries of a browser and a context; null matches any.
  virtual int GetPendingCount(CefRefPtr<CefBrowser> browser, CefRefPtr<CefV8Context> context) = 0;

  // To be called from the render process handler's methods of the same names. OnContextCreated
  // installs the query functions in the document.
  virtual void OnContextCreated(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                CefRefPtr<CefV8Context> context) = 0;
  virtual void OnContextReleased(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                 CefRefPtr<CefV8Context> context) = 0;
  // True if the message belongs to this router.
  virtual bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                        CefProcessId source_process,
                                        CefRefPtr<CefProcessMessage> message) = 0;

 protected:
  friend class base::RefCountedThreadSafe<CefMessageRouterRendererSide>;
  virtual ~CefMessageRouterRendererSide() = default;
};

#endif  // CEF_INCLUDE_WRAPPER_CEF_MESSAGE_ROUTER_H_
