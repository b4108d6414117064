#pragma once

#include <Poco/SharedPtr.h>

#include "include/cef_browser.h"
#include "transfers/messages/message_handler_base.h"
#include "zt_transfers/upload_manager.h"

namespace zantrio::messages {

// Tells the page what the upload manager reports.
//
// The manager calls on its own threads; there the record is copied and a task posted, which keeps
// the relay alive. All else happens on the UI thread.
class CMessageHandlerUploadManager : public CMessageHandlerBase,
                                     private zt_transfers::CUploadManager::ICallback {
 public:
  CMessageHandlerUploadManager() = default;
  CMessageHandlerUploadManager(const CMessageHandlerUploadManager&) = delete;
  CMessageHandlerUploadManager& operator=(const CMessageHandlerUploadManager&) = delete;

  // Keeps the browser and the upload manager, and subscribes to the manager's events.
  void attach(const QueryHandlerContext& context) override;
  void detach() override;

 protected:
  // Detaches first.
  ~CMessageHandlerUploadManager() override;

  virtual void groupStateChanged(const zt_transfers::CUploadManager::GroupState& group);
  virtual void fileStateChanged(const zt_transfers::FileState& file);

 private:
  void onGroupStateChanged(const zt_transfers::CUploadManager::GroupState& group) override;
  void onFileStateChanged(const zt_transfers::FileState& file) override;

  Poco::SharedPtr<zt_transfers::CUploadManager> manager_;
  CefRefPtr<CefBrowser> browser_;
  bool subscribed_ = false;

  IMPLEMENT_REFCOUNTING(CMessageHandlerUploadManager);
};

}  // namespace zantrio::messages
