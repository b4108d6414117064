#pragma once

#include "transfers/messages/transfer_relay.h"
#include "zt_transfers/upload_manager.h"

namespace zantrio::messages {

// Forwards the upload manager's events to the page.
class CMessageHandlerUploadManager : public CTransferRelay<zt_transfers::CUploadManager> {
 public:
  CMessageHandlerUploadManager()
      : CTransferRelay({&QueryHandlerContext::uploadManager, "_uploadManager_groupStateChanged(",
                        "_uploadManager_fileStateChanged("}) {}

 protected:
  ~CMessageHandlerUploadManager() override = default;
};

}  // namespace zantrio::messages
