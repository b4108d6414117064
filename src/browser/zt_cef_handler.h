#pragma once

#include <Poco/SharedPtr.h>
#include <Poco/Timespan.h>
#include <Poco/Util/Timer.h>
#include <Poco/Util/TimerTask.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/settings/app_settings.h"
#include "bridge/web_app_life_cycle_callback.h"
#include "browser/bridge_routers.h"
#include "browser/reachability_watch.h"
#include "include/cef_client.h"
#include "osr/render_handler.h"
#include "services/platform_init.h"
#include "transfers/messages/message_handler_list.h"

namespace zantrio {

// The framework's client object for the application's browser, from its creation to its end:
//
//   OnAfterCreated   prepares the platform, creates the bridges' handlers, their routers, the
//                    relays and the transfer managers, and posts loadApp
//   loadApp          navigates to the web application and watches whether it comes up
//   onStartup        the web application is ready: starts the managers, hands over initial files
//   OnProcessMessageReceived
//                    passes the page's queries to the routers of the bridges
//   DoClose          the window is closing: stops the queries and starts a watchdog
//   OnBeforeClose    releases bridges, handlers and relays, and ends the message loop; called by
//                    the framework, or by the watchdog (onCloseTask) when the framework does not
//
// zt_cef_handler_navigation.cc has the calls between the web application and this object,
// zt_cef_handler_close.cc the close protocol.
//
// Ownership: counted references held by the framework; one instance at a time. Thread: UI, except
// CloseAllBrowsers (any) and onCloseTask (the close timer's). Errors: an exception in a callback is
// logged under the callback's name and does not reach the framework.
class ZtCefHandler : public CefClient,
                     public CefLifeSpanHandler,
                     public CefRenderHandler,
                     public CefRequestHandler,
                     public CefDragHandler,
                     public CefJSDialogHandler,
                     public IWebAppLifeCycleCallback {
 public:
  struct Options {
    // Fills QueryHandlerRegistry with the bridges that the page may call.
    std::function<void()> registerHandlers;
    // The time that DoClose allows for OnBeforeClose to be called.
    Poco::Timespan closePeriod{10, 0};
    // Checks whether the service answers; replaced by tests.
    ReachabilityProbe probe = probeWithHttp;
    // Draws the browser off screen. Null for a browser with a window of its own.
    CefRefPtr<client::RenderHandler> renderHandler;
  };

  ZtCefHandler(Poco::SharedPtr<CAppSettings> settings, const Options& options);
  ZtCefHandler(const ZtCefHandler&) = delete;
  ZtCefHandler& operator=(const ZtCefHandler&) = delete;

  // The latest instance; null when it is gone.
  static ZtCefHandler* instance();

  // ---- Called by the application.

  bool hasBrowsers() const { return hasBrowsers_; }
  // The browser that was opened first; null when none is open.
  CefRefPtr<CefBrowser> mainBrowser() const {
    return browsers_.empty() ? nullptr : browsers_.front();
  }
  // Navigates to the web application.
  void loadApp(CefRefPtr<CefBrowser> browser);
  // Thread: any.
  void CloseAllBrowsers(bool forceClose);

  // Hands the items to every drag handler. `paths` are absolute, in UTF-8.
  void filesDropped(const std::vector<std::string>& paths, bool complete, bool defer);
  // Opens the files named by another start of the program and shows the window. Until the web
  // application is ready, the files are kept with the initial ones.
  void openFiles(const std::vector<std::string>& paths);
  // Moves the web application to one of its routes.
  void navigateToAddress(const std::string& address);
  void newMessage();
  void newShare();

  // ---- Called by the web application, through the native app bridge (IWebAppLifeCycleCallback).

  void onStartup() override;
  void onShutdown() override;

  // ---- Called by the framework.

  // CefClient: the handlers for each kind of event. A null handler leaves the framework's default.
  CefRefPtr<CefContextMenuHandler> GetContextMenuHandler() override { return nullptr; }
  CefRefPtr<CefDialogHandler> GetDialogHandler() override { return nullptr; }
  CefRefPtr<CefDisplayHandler> GetDisplayHandler() override;
  CefRefPtr<CefDownloadHandler> GetDownloadHandler() override { return nullptr; }
  CefRefPtr<CefDragHandler> GetDragHandler() override { return this; }
  CefRefPtr<CefFindHandler> GetFindHandler() override { return nullptr; }
  CefRefPtr<CefFocusHandler> GetFocusHandler() override { return nullptr; }
  CefRefPtr<CefJSDialogHandler> GetJSDialogHandler() override { return this; }
  CefRefPtr<CefKeyboardHandler> GetKeyboardHandler() override { return nullptr; }
  CefRefPtr<CefLifeSpanHandler> GetLifeSpanHandler() override { return this; }
  CefRefPtr<CefLoadHandler> GetLoadHandler() override { return nullptr; }
  CefRefPtr<CefRenderHandler> GetRenderHandler() override;
  // GetRequestHandler is not overridden and returns null: see OnBeforeBrowse before changing that.

  // Queries of the page arrive here as process messages. The relays are asked first but register
  // no messages; BridgeRouters dispatches the queries to the handlers.
  bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                CefProcessId source_process,
                                CefRefPtr<CefProcessMessage> message) override;

  // CefLifeSpanHandler
  void OnAfterCreated(CefRefPtr<CefBrowser> browser) override;
  bool DoClose(CefRefPtr<CefBrowser> browser) override;
  void OnBeforeClose(CefRefPtr<CefBrowser> browser) override;

  // CefRequestHandler. By contract the framework never calls these two: GetRequestHandler returns
  // null, so navigations are not filtered. OnBeforeBrowse returns true, which cancels a navigation.
  // Returning this object from GetRequestHandler would therefore block every navigation.
  void OnRenderProcessTerminated(CefRefPtr<CefBrowser> browser, TerminationStatus status,
                                 int error_code, const CefString& error_string) override;
  bool OnBeforeBrowse(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                      CefRefPtr<CefRequest> request, bool user_gesture, bool is_redirect) override;

  // CefRenderHandler, for a browser with a window of its own: nothing is painted here.
  void GetViewRect(CefRefPtr<CefBrowser> browser, CefRect& rect) override;
  void OnPaint(CefRefPtr<CefBrowser> browser, PaintElementType type, const RectList& dirtyRects,
               const void* buffer, int width, int height) override;

  // CefJSDialogHandler: alert and confirm of the page are shown as native dialogs.
  bool OnJSDialog(CefRefPtr<CefBrowser> browser, const CefString& origin_url,
                  JSDialogType dialog_type, const CefString& message_text,
                  const CefString& default_prompt_text, CefRefPtr<CefJSDialogCallback> callback,
                  bool& suppress_message) override;

  // CefDragHandler: offers a drag that enters the page to the drag handlers. True, which cancels
  // the drag, when none accepts it.
  bool OnDragEnter(CefRefPtr<CefBrowser> browser, CefRefPtr<CefDragData> dragData,
                   CefDragHandler::DragOperationsMask mask) override;

  // ---- Steps of the close protocol.

  // Tells every handler that the application shuts down.
  virtual void notifyAppShutdown();
  // The watchdog. Thread: the close timer's.
  void onCloseTask();

 protected:
  ~ZtCefHandler() override;

 private:
  static void finishOverdueClose();

  void initializeBrowser(const CefRefPtr<CefBrowser>& browser);
  void postLoadApp(const CefRefPtr<CefBrowser>& browser);
  void watchClose(Poco::Util::TimerTask& task);
  void cancelCloseTask();
  void addBrowser(const CefRefPtr<CefBrowser>& browser);
  void removeBrowser(const CefRefPtr<CefBrowser>& browser);

  std::vector<CefRefPtr<CefBrowser>> browsers_;
  bool closing_ = false;
  bool started_ = false;
  messages::CMessageHandlerList& relays_;
  BridgeRouters routers_;
  std::unique_ptr<IPlatformInit> platformInit_;
  const CefRefPtr<ReachabilityWatch> reachability_;
  // Whether browsers_ has any; read by the close timer's thread.
  std::atomic<bool> hasBrowsers_{false};
  Poco::Util::TimerTask::Ptr closeTask_;
  // Declared after the members that its thread uses, so that the thread ends before them.
  Poco::Util::Timer closeTimer_;
  const Poco::SharedPtr<CAppSettings> settings_;
  const std::function<void()> registerHandlers_;
  const Poco::Timespan closePeriod_;
  const CefRefPtr<client::RenderHandler> renderHandler_;

  IMPLEMENT_REFCOUNTING(ZtCefHandler);
};

}  // namespace zantrio
