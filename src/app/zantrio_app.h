#pragma once

#include <Poco/SharedPtr.h>

#include <vector>

#include "app/settings/app_settings.h"
#include "include/cef_app.h"
#include "include/wrapper/cef_message_router.h"
#include "osr/render_handler.h"

namespace zantrio {

// The framework's application object in every process. In the browser process it opens the window;
// in a render process it gives the page its query functions.
//
// Ownership: counted references, one of them held by the entry point. Thread: UI, or the render
// process's main thread. Errors: logged under the callback's name; none reaches the framework.
class ZantrioApp : public CefApp, public CefBrowserProcessHandler, public CefRenderProcessHandler {
 public:
  explicit ZantrioApp(Poco::SharedPtr<CAppSettings> settings);
  // Makes the browser draw off screen, into the application's own OpenGL view. Call it before the
  // framework starts.
  void showOffScreen() { offScreen_ = true; }
  ZantrioApp(const ZantrioApp&) = delete;
  ZantrioApp& operator=(const ZantrioApp&) = delete;

  // CefApp
  void OnBeforeCommandLineProcessing(const CefString& process_type,
                                     CefRefPtr<CefCommandLine> command_line) override;
  void OnRegisterCustomSchemes(CefRawPtr<CefSchemeRegistrar> registrar) override;
  CefRefPtr<CefResourceBundleHandler> GetResourceBundleHandler() override { return nullptr; }
  CefRefPtr<CefBrowserProcessHandler> GetBrowserProcessHandler() override { return this; }
  CefRefPtr<CefRenderProcessHandler> GetRenderProcessHandler() override { return this; }

  // CefBrowserProcessHandler
  void OnContextInitialized() override;
  // Another start of the program was forwarded to this process: opens the files named there.
  bool OnAlreadyRunningAppRelaunch(CefRefPtr<CefCommandLine> command_line,
                                   const CefString& current_directory) override;

  // CefRenderProcessHandler
  void OnWebKitInitialized() override;
  void OnContextCreated(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                        CefRefPtr<CefV8Context> context) override;
  void OnContextReleased(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                         CefRefPtr<CefV8Context> context) override;
  void OnBrowserCreated(CefRefPtr<CefBrowser> browser,
                        CefRefPtr<CefDictionaryValue> extra_info) override;
  void OnBrowserDestroyed(CefRefPtr<CefBrowser> browser) override;
  bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                CefProcessId source_process,
                                CefRefPtr<CefProcessMessage> message) override;

 private:
  void openBrowser();
  // Opens an off-screen view, sets its window as the parent in `window`, and returns its render
  // handler. Null, logged, when the system cannot draw off screen.
  CefRefPtr<client::RenderHandler> makeOffScreenView(CefWindowInfo& window) const;

  const Poco::SharedPtr<CAppSettings> settings_;
  bool offScreen_ = false;
  // Render process: one per bridge, in the order of the bridges' names.
  std::vector<CefRefPtr<CefMessageRouterRendererSide>> routers_;

  IMPLEMENT_REFCOUNTING(ZantrioApp);
};

}  // namespace zantrio
