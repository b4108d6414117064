#include "browser/zt_cef_handler.h"

#include <utility>

#include "app/log/guarded.h"
#include "app/log/logger.h"
#include "bridge/page_gate.h"
#include "bridge/query_handler_context.h"
#include "browser/drag_message.h"
#include "browser/loading_page.h"
#include "browser/page_dialogs.h"
#include "include/base/cef_bind.h"
#include "include/base/cef_callback.h"
#include "include/wrapper/cef_closure_task.h"
#include "include/wrapper/cef_helpers.h"
#include "transfers/messages/transfers_initialization.h"

namespace zantrio {
namespace {

constexpr int kWindowWidth = 1400;
constexpr int kWindowHeight = 900;
constexpr std::int64_t kLoadAppDelayMs = 500;

ZtCefHandler* currentInstance = nullptr;

std::shared_ptr<const CPageGate> makeGate(const CAppSettings& settings) {
  std::string baseUrl;
  std::string furtherOrigins;
  settings.getAppBaseUrl(baseUrl);
  settings.getBridgeOrigins(furtherOrigins);
  return std::make_shared<const CPageGate>(baseUrl, furtherOrigins);
}

}  // namespace

ZtCefHandler::ZtCefHandler(Poco::SharedPtr<CAppSettings> settings, const Options& options)
    : relays_(messages::CMessageHandlerList::instance()),
      platformInit_(createPlatformInit()),
      reachability_(new ReachabilityWatch(options.probe)),
      settings_(std::move(settings)),
      registerHandlers_(options.registerHandlers),
      closePeriod_(options.closePeriod),
      renderHandler_(options.renderHandler) {
  currentInstance = this;
}

ZtCefHandler::~ZtCefHandler() {
  if (currentInstance == this) {
    currentInstance = nullptr;
  }
}

ZtCefHandler* ZtCefHandler::instance() {
  return currentInstance;
}

bool ZtCefHandler::OnProcessMessageReceived(CefRefPtr<CefBrowser> browser,
                                            CefRefPtr<CefFrame> frame, CefProcessId source_process,
                                            CefRefPtr<CefProcessMessage> message) {
  CEF_REQUIRE_UI_THREAD();
  constexpr const char* kOperation = "OnProcessMessageReceived";
  return guarded(kOperation, false, [&] {
    if (!browser || !message || instance() == nullptr) {
      return false;
    }
    if (closing_) {
      logInformation(kOperation, ": message received while closing the app!");
      return false;
    }
    return relays_.onMessage(message) ||
           routers_.onProcessMessageReceived(browser, frame, source_process, message);
  });
}

void ZtCefHandler::OnAfterCreated(CefRefPtr<CefBrowser> browser) {
  CEF_REQUIRE_UI_THREAD();
  guarded("OnAfterCreated", [&] {
    logInformation("Browser instance created!");
    if (browser->IsPopup()) {
      logInformation("Window created is a pop up window, skipping initialization");
      return;
    }
    addBrowser(browser);
    initializeBrowser(browser);
    postLoadApp(browser);
  });
}

void ZtCefHandler::initializeBrowser(const CefRefPtr<CefBrowser>& browser) {
  if (platformInit_) {
    platformInit_->init();
  }
  relays_.fill();
  registerHandlers_();
  messages::initializeTransfers(*settings_);

  QueryHandlerContext context;
  context.browser = browser;
  context.lifeCycleCallback = this;
  context.uploadManager = new zt_transfers::CUploadManager;
  context.downloadManager = new zt_transfers::CDownloadManager;
  context.gate = makeGate(*settings_);
  routers_.connect(context);
  relays_.attach(context);
}

void ZtCefHandler::postLoadApp(const CefRefPtr<CefBrowser>& browser) {
  CefPostDelayedTask(TID_UI,
                     base::BindOnce(&ZtCefHandler::loadApp, CefRefPtr<ZtCefHandler>(this), browser),
                     kLoadAppDelayMs);
}

void ZtCefHandler::loadApp(CefRefPtr<CefBrowser> browser) {
  CEF_REQUIRE_UI_THREAD();
  guarded("loadApp", [&] {
    std::string url;
    settings_->getAppUrl(url);
    logInformation("Trying to load main app using URL: ", url);
    const CefRefPtr<CefFrame> frame = browser->GetMainFrame();
    if (!frame) {
      return;  // closed meanwhile
    }
    frame->LoadURL(url);
    std::string userAgent;
    settings_->getUserAgent(userAgent);
    reachability_->start(browser, {url, unreachablePageUrl(*settings_, url), userAgent});
  });
}

void ZtCefHandler::OnRenderProcessTerminated(CefRefPtr<CefBrowser> browser,
                                             TerminationStatus /*status*/, int /*error_code*/,
                                             const CefString& /*error_string*/) {
  CEF_REQUIRE_UI_THREAD();
  guarded("OnRenderProcessTerminated", [&] { routers_.onRenderProcessTerminated(browser); });
}

// Never called, by contract: see the declaration.
bool ZtCefHandler::OnBeforeBrowse(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                  CefRefPtr<CefRequest> /*request*/, bool /*user_gesture*/,
                                  bool /*is_redirect*/) {
  CEF_REQUIRE_UI_THREAD();
  guarded("OnBeforeBrowse", [&] { routers_.onBeforeBrowse(browser, frame); });
  return true;
}

CefRefPtr<CefDisplayHandler> ZtCefHandler::GetDisplayHandler() {
  return renderHandler_;
}

CefRefPtr<CefRenderHandler> ZtCefHandler::GetRenderHandler() {
  if (renderHandler_) {
    return renderHandler_;
  }
  return this;
}

void ZtCefHandler::GetViewRect(CefRefPtr<CefBrowser> /*browser*/, CefRect& rect) {
  rect.Set(0, 0, kWindowWidth, kWindowHeight);
}

void ZtCefHandler::OnPaint(CefRefPtr<CefBrowser> /*browser*/, PaintElementType /*type*/,
                           const RectList& /*dirtyRects*/, const void* /*buffer*/, int /*width*/,
                           int /*height*/) {}

bool ZtCefHandler::OnJSDialog(CefRefPtr<CefBrowser> /*browser*/, const CefString& /*origin_url*/,
                              JSDialogType dialog_type, const CefString& message_text,
                              const CefString& /*default_prompt_text*/,
                              CefRefPtr<CefJSDialogCallback> callback, bool& /*suppress_message*/) {
  CEF_REQUIRE_UI_THREAD();
  return guarded("OnJSDialog", false,
                 [&] { return answerPageDialog(dialog_type, message_text, callback); });
}

bool ZtCefHandler::OnDragEnter(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefDragData> dragData,
                               CefDragHandler::DragOperationsMask /*mask*/) {
  CEF_REQUIRE_UI_THREAD();
  constexpr const char* kOperation = "OnDragEnter";
  return guarded(kOperation, true, [&] {
    logInformation(kOperation, ": Drag detected!");
    const DragMessage message = toDragMessage(dragData);
    logInformation("Drag data type: ", message.kind);
    return !offerDrag(message);
  });
}

}  // namespace zantrio
