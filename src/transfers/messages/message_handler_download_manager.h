#pragma once

#include "transfers/messages/transfer_relay.h"
#include "zt_transfers/download_manager.h"

namespace zantrio::messages {

// Forwards the download manager's events to the page, and opens the folder of a finished group.
class CMessageHandlerDownloadManager : public CTransferRelay<zt_transfers::CDownloadManager> {
 public:
  CMessageHandlerDownloadManager()
      : CTransferRelay({&QueryHandlerContext::downloadManager,
                        "_downloadManager_groupStateChanged(",
                        "_downloadManager_fileStateChanged("}) {}

 protected:
  ~CMessageHandlerDownloadManager() override = default;

  void groupStateChanged(const GroupState& group) override;
};

}  // namespace zantrio::messages
