#include "transfers/messages/message_handler_download_manager.h"

#include "services/os_file_explorer.h"

namespace zantrio::messages {
namespace {

using zt_transfers::CDownloadManager;

// A completed group, unless it completed before anything was transferred; a cancelled one, if some
// of its files were completed.
bool hasFilesToShow(const CDownloadManager::GroupState& group) {
  const bool completed =
      group.state == zt_transfers::kGroupCompleted && group.percentTransferred != 0.0F;
  return completed || (group.cancelled && group.filesCompleted != 0);
}

void openDownloadFolder(const CDownloadManager::GroupState& group) {
  if (const auto explorer = createOsFileExplorer()) {
    explorer->openFolder(narrowToBytes(group.downloadFolder));
  }
}

}  // namespace

void CMessageHandlerDownloadManager::groupStateChanged(const GroupState& group) {
  if (forward(group) && hasFilesToShow(group)) {
    openDownloadFolder(group);
  }
}

}  // namespace zantrio::messages
