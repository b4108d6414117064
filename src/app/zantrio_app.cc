#include "app/zantrio_app.h"

#include <string>
#include <utility>

#include "app/log/guarded.h"
#include "app/log/logger.h"
#include "app/open_files.h"
#include "app/register_query_handlers.h"
#include "bridge/bridge_names.h"
#include "browser/loading_page.h"
#include "browser/zt_cef_handler.h"
#include "include/wrapper/cef_helpers.h"
#include "osr/client_osr_handler.h"
#include "osr/view/osr_view.h"

namespace zantrio {
namespace {

constexpr int kWindowWidth = 1400;
constexpr int kWindowHeight = 900;
constexpr int kFramesPerSecond = 60;

CefWindowInfo describeWindow(const CAppSettings& settings) {
  std::string title;
  settings.getProductName(title);
  CefWindowInfo window;
  CefString(&window.window_name) = title;
  window.bounds = CefRect(0, 0, kWindowWidth, kWindowHeight);
  return window;
}

CefBrowserSettings describeBrowser() {
  CefBrowserSettings browser;
  browser.javascript = STATE_ENABLED;
  browser.local_storage = STATE_ENABLED;
  return browser;
}

}  // namespace

ZantrioApp::ZantrioApp(Poco::SharedPtr<CAppSettings> settings) : settings_(std::move(settings)) {}

void ZantrioApp::OnBeforeCommandLineProcessing(const CefString& /*process_type*/,
                                               CefRefPtr<CefCommandLine> /*command_line*/) {}

void ZantrioApp::OnRegisterCustomSchemes(CefRawPtr<CefSchemeRegistrar> /*registrar*/) {}

void ZantrioApp::OnContextInitialized() {
  CEF_REQUIRE_UI_THREAD();
  guarded("OnContextInitialized", [this] { openBrowser(); });
}

void ZantrioApp::openBrowser() {
  CefWindowInfo window = describeWindow(*settings_);
  CefBrowserSettings browser = describeBrowser();
  ZtCefHandler::Options options;
  options.registerHandlers = [] { registerQueryHandlers(); };
  if (offScreen_) {
    options.renderHandler = makeOffScreenView(window);
    browser.windowless_frame_rate = kFramesPerSecond;
  }
  const CefRefPtr<ZtCefHandler> client(new ZtCefHandler(settings_, options));
  const std::string url = loadingPageUrl(*settings_);
  logInformation("Loading initial html using URL: ", url);
  CefBrowserHost::CreateBrowser(window, client, url, browser, nullptr, nullptr);
}

CefRefPtr<client::RenderHandler> ZantrioApp::makeOffScreenView(CefWindowInfo& window) const {
  client::OffScreenViewOptions options;
  settings_->getProductName(options.title);
  options.bounds = window.bounds;
  options.browserProvider = [] {
    const ZtCefHandler* const client = ZtCefHandler::instance();
    return client != nullptr ? client->mainBrowser() : nullptr;
  };
  std::string error;
  const auto view = client::createOffScreenView(options, error);
  if (!view) {
    logError("Off-screen rendering is not possible: ", error, "; an ordinary window is opened.");
    return nullptr;
  }
  window.SetAsWindowless(client::windowOf(*view));
  return client::OSRWindow::Create(view)->GetRenderHandler();
}

bool ZantrioApp::OnAlreadyRunningAppRelaunch(CefRefPtr<CefCommandLine> command_line,
                                             const CefString& current_directory) {
  CEF_REQUIRE_UI_THREAD();
  return guarded("OnAlreadyRunningAppRelaunch", false, [&] {
    CefCommandLine::ArgumentList arguments;
    command_line->GetArguments(arguments);
    std::vector<std::string> names;
    names.reserve(arguments.size());
    for (const CefString& argument : arguments) {
      names.push_back(argument.ToString());
    }
    if (ZtCefHandler* const client = ZtCefHandler::instance()) {
      client->openFiles(absolutePaths(names, current_directory.ToString()));
    }
    return true;
  });
}

void ZantrioApp::OnWebKitInitialized() {
  CEF_REQUIRE_RENDERER_THREAD();
  guarded("OnWebKitInitialized", [this] {
    // Every bridge has its function, even one whose handler the browser process cannot create.
    for (const char* const name : bridge_names::kAll) {
      CefMessageRouterConfig config;
      config.js_query_function = name;
      routers_.push_back(CefMessageRouterRendererSide::Create(config));
    }
  });
}

void ZantrioApp::OnContextCreated(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                  CefRefPtr<CefV8Context> context) {
  CEF_REQUIRE_RENDERER_THREAD();
  guarded("OnContextCreated", [&] {
    for (const auto& router : routers_) {
      router->OnContextCreated(browser, frame, context);
    }
  });
}

void ZantrioApp::OnContextReleased(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                   CefRefPtr<CefV8Context> context) {
  CEF_REQUIRE_RENDERER_THREAD();
  guarded("OnContextReleased", [&] {
    for (const auto& router : routers_) {
      router->OnContextReleased(browser, frame, context);
    }
  });
}

void ZantrioApp::OnBrowserCreated(CefRefPtr<CefBrowser> /*browser*/,
                                  CefRefPtr<CefDictionaryValue> /*extra_info*/) {}

void ZantrioApp::OnBrowserDestroyed(CefRefPtr<CefBrowser> /*browser*/) {}

bool ZantrioApp::OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                          CefProcessId source_process,
                                          CefRefPtr<CefProcessMessage> message) {
  CEF_REQUIRE_RENDERER_THREAD();
  return guarded("OnProcessMessageReceived", false, [&] {
    bool handled = false;
    for (const auto& router : routers_) {
      handled =
          router->OnProcessMessageReceived(browser, frame, source_process, message) || handled;
    }
    return handled;
  });
}

}  // namespace zantrio
