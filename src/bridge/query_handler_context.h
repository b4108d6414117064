#pragma once

#include <Poco/SharedPtr.h>

#include "include/cef_browser.h"
#include "zt_transfers/download_manager.h"
#include "zt_transfers/upload_manager.h"

namespace zantrio {

class IWebAppLifeCycleCallback;

// What the browser client hands to every query handler and event relay. One record is made for
// each main browser window; whoever keeps a copy of a member keeps that object alive.
struct QueryHandlerContext {
  CefRefPtr<CefBrowser> browser;
  IWebAppLifeCycleCallback* lifeCycleCallback = nullptr;  // not owned
  Poco::SharedPtr<zt_transfers::CUploadManager> uploadManager;
  Poco::SharedPtr<zt_transfers::CDownloadManager> downloadManager;
};

}  // namespace zantrio
