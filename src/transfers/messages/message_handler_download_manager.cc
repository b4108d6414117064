#include "transfers/messages/message_handler_download_manager.h"

#include "bridge/query_handler_context.h"
#include "services/os_file_explorer.h"
#include "transfers/messages/event_task.h"
#include "transfers/messages/page_call.h"
#include "transfers/record_json.h"
#include "transfers/wide_text.h"

namespace zantrio::messages {
namespace {

using zt_transfers::CDownloadManager;

// A group that is done, unless it was done before anything came; a cancelled one, if some of its
// files did come.
bool hasSomethingToShow(const CDownloadManager::GroupState& group) {
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

CMessageHandlerDownloadManager::~CMessageHandlerDownloadManager() {
  CMessageHandlerDownloadManager::detach();
}

void CMessageHandlerDownloadManager::attach(const QueryHandlerContext& context) {
  detach();
  browser_ = context.browser;
  manager_ = context.downloadManager;
  manager_->subscribeToEvents(this);
  subscribed_ = true;
}

void CMessageHandlerDownloadManager::detach() {
  if (subscribed_) {
    subscribed_ = false;
    manager_->subscribeToEvents(nullptr);
  }
}

void CMessageHandlerDownloadManager::onGroupStateChanged(
    const zt_transfers::CDownloadManager::GroupState& group) {
  postEvent(this, &CMessageHandlerDownloadManager::groupStateChanged, group);
}

void CMessageHandlerDownloadManager::onFileStateChanged(const zt_transfers::FileState& file) {
  postEvent(this, &CMessageHandlerDownloadManager::fileStateChanged, file);
}

void CMessageHandlerDownloadManager::groupStateChanged(
    const zt_transfers::CDownloadManager::GroupState& group) {
  if (callPage(browser_, "_downloadManager_groupStateChanged(", groupEventToJson(group)) &&
      hasSomethingToShow(group)) {
    openDownloadFolder(group);
  }
}

void CMessageHandlerDownloadManager::fileStateChanged(const zt_transfers::FileState& file) {
  Json::Value event;
  toJson(file, event);
  callPage(browser_, "_downloadManager_fileStateChanged(", event);
}

}  // namespace zantrio::messages
