#pragma once

#include <Poco/SharedPtr.h>

#include <memory>

#include "include/cef_browser.h"
#include "zt_transfers/download_manager.h"
#include "zt_transfers/upload_manager.h"

namespace zantrio {

class CPageGate;
class IWebAppLifeCycleCallback;

// The objects that the browser client shares with every query handler and event relay. One record
// per main browser window; a copied member keeps its object alive.
struct QueryHandlerContext {
  CefRefPtr<CefBrowser> browser;
  IWebAppLifeCycleCallback* lifeCycleCallback = nullptr;  // not owned
  Poco::SharedPtr<zt_transfers::CUploadManager> uploadManager;
  Poco::SharedPtr<zt_transfers::CDownloadManager> downloadManager;
  // Which documents may query the handlers. Null, which admits all, only without a browser client.
  std::shared_ptr<const CPageGate> gate;
};

}  // namespace zantrio
