#pragma once

#include <Poco/SharedPtr.h>

#include "include/cef_browser.h"
#include "transfers/messages/message_handler_base.h"
#include "zt_transfers/download_manager.h"

namespace zantrio::messages {

// Tells the page what the download manager reports, and opens the folder of a group that is done.
//
// The manager calls on its own threads; there the record is copied and a task posted, which keeps
// the relay alive. All else happens on the UI thread.
class CMessageHandlerDownloadManager : public CMessageHandlerBase,
                                       private zt_transfers::CDownloadManager::ICallback {
 public:
  CMessageHandlerDownloadManager() = default;
  CMessageHandlerDownloadManager(const CMessageHandlerDownloadManager&) = delete;
  CMessageHandlerDownloadManager& operator=(const CMessageHandlerDownloadManager&) = delete;

  // Keeps the browser and the download manager, and subscribes to the manager's events.
  void attach(const QueryHandlerContext& context) override;
  void detach() override;

 protected:
  // Detaches first.
  ~CMessageHandlerDownloadManager() override;

  virtual void groupStateChanged(const zt_transfers::CDownloadManager::GroupState& group);
  virtual void fileStateChanged(const zt_transfers::FileState& file);

 private:
  void onGroupStateChanged(const zt_transfers::CDownloadManager::GroupState& group) override;
  void onFileStateChanged(const zt_transfers::FileState& file) override;

  Poco::SharedPtr<zt_transfers::CDownloadManager> manager_;
  CefRefPtr<CefBrowser> browser_;
  bool subscribed_ = false;

  IMPLEMENT_REFCOUNTING(CMessageHandlerDownloadManager);
};

}  // namespace zantrio::messages
