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

// The client of the application's browser: connects the page's query bridges with their native
// handlers, loads the web application, answers the page's dialogs and drags, and runs the close
// protocol.
//
// Ownership: kept by the framework through counted references; one instance at a time.
// Thread: the UI thread, but for CloseAllBrowsers and onCloseTask. Errors: what goes wrong in a
// callback is logged under the callback's name and goes no further.
//
// Closing: DoClose of the last browser makes the client drop the page's messages and starts a
// watchdog; OnBeforeClose (the framework's, or the watchdog's when that does not come) takes
// bridges, handlers and relays down and ends the message loop.
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
    // How long DoClose waits for OnBeforeClose.
    Poco::Timespan closePeriod{10, 0};
    // What tells whether the service answers; replaced by tests.
    ReachabilityProbe probe = probeWithHttp;
    // What draws the browser off screen; null: the browser has a window of its own.
    CefRefPtr<client::RenderHandler> renderHandler;
  };

  ZtCefHandler(Poco::SharedPtr<CAppSettings> settings, const Options& options);
  ZtCefHandler(const ZtCefHandler&) = delete;
  ZtCefHandler& operator=(const ZtCefHandler&) = delete;

  // Null while there is none.
  static ZtCefHandler* instance();

  // CefClient
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
  // GetRequestHandler stays at its default, null: the page's navigations are not filtered.

  bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                CefProcessId source_process,
                                CefRefPtr<CefProcessMessage> message) override;

  // CefLifeSpanHandler
  void OnAfterCreated(CefRefPtr<CefBrowser> browser) override;
  bool DoClose(CefRefPtr<CefBrowser> browser) override;
  void OnBeforeClose(CefRefPtr<CefBrowser> browser) override;

  // CefRequestHandler
  void OnRenderProcessTerminated(CefRefPtr<CefBrowser> browser, TerminationStatus status,
                                 int error_code, const CefString& error_string) override;
  bool OnBeforeBrowse(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                      CefRefPtr<CefRequest> request, bool user_gesture, bool is_redirect) override;

  // CefRenderHandler, where the browser has a window of its own; nothing is painted here.
  void GetViewRect(CefRefPtr<CefBrowser> browser, CefRect& rect) override;
  void OnPaint(CefRefPtr<CefBrowser> browser, PaintElementType type, const RectList& dirtyRects,
               const void* buffer, int width, int height) override;

  // CefJSDialogHandler
  bool OnJSDialog(CefRefPtr<CefBrowser> browser, const CefString& origin_url,
                  JSDialogType dialog_type, const CefString& message_text,
                  const CefString& default_prompt_text, CefRefPtr<CefJSDialogCallback> callback,
                  bool& suppress_message) override;

  // CefDragHandler
  bool OnDragEnter(CefRefPtr<CefBrowser> browser, CefRefPtr<CefDragData> dragData,
                   CefDragHandler::DragOperationsMask mask) override;

  // IWebAppLifeCycleCallback
  void onStartup() override;
  void onShutdown() override;

  // Tells every handler that the application shuts down.
  virtual void notifyAppShutdown();

  bool hasBrowsers() const { return hasBrowsers_; }
  // The first browser; null when none is open. Thread: UI.
  CefRefPtr<CefBrowser> mainBrowser() const {
    return browsers_.empty() ? nullptr : browsers_.front();
  }
  // Navigates to the web application.
  void loadApp(CefRefPtr<CefBrowser> browser);
  // Thread: any.
  void CloseAllBrowsers(bool forceClose);
  // The watchdog. Thread: the close timer's.
  void onCloseTask();

  // Hands the items to every drag handler. `paths` are absolute, in UTF-8.
  void filesDropped(const std::vector<std::string>& paths, bool complete, bool defer);
  // Items that another start of the program was asked to open: handed on at once, or together
  // with the initial ones when the web application is not ready yet. Shows the window.
  void openFiles(const std::vector<std::string>& paths);
  // Moves the web application to one of its routes.
  void navigateToAddress(const std::string& address);
  void newMessage();
  void newShare();

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
  // What the close timer's thread may read of browsers_.
  std::atomic<bool> hasBrowsers_{false};
  Poco::Util::TimerTask::Ptr closeTask_;
  // Its thread ends before the members above do.
  Poco::Util::Timer closeTimer_;
  const Poco::SharedPtr<CAppSettings> settings_;
  const std::function<void()> registerHandlers_;
  const Poco::Timespan closePeriod_;
  const CefRefPtr<client::RenderHandler> renderHandler_;

  IMPLEMENT_REFCOUNTING(ZtCefHandler);
};

}  // namespace zantrio
