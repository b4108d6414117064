#include "transfers/messages/message_handler_upload_manager.h"

#include "bridge/query_handler_context.h"
#include "transfers/messages/event_task.h"
#include "transfers/messages/page_call.h"
#include "transfers/record_json.h"

namespace zantrio::messages {

CMessageHandlerUploadManager::~CMessageHandlerUploadManager() {
  CMessageHandlerUploadManager::detach();
}

void CMessageHandlerUploadManager::attach(const QueryHandlerContext& context) {
  detach();
  browser_ = context.browser;
  manager_ = context.uploadManager;
  manager_->subscribeToEvents(this);
  subscribed_ = true;
}

void CMessageHandlerUploadManager::detach() {
  if (subscribed_) {
    subscribed_ = false;
    manager_->subscribeToEvents(nullptr);
  }
}

void CMessageHandlerUploadManager::onGroupStateChanged(
    const zt_transfers::CUploadManager::GroupState& group) {
  postEvent(this, &CMessageHandlerUploadManager::groupStateChanged, group);
}

void CMessageHandlerUploadManager::onFileStateChanged(const zt_transfers::FileState& file) {
  postEvent(this, &CMessageHandlerUploadManager::fileStateChanged, file);
}

void CMessageHandlerUploadManager::groupStateChanged(
    const zt_transfers::CUploadManager::GroupState& group) {
  callPage(browser_, "_uploadManager_groupStateChanged(", groupEventToJson(group));
}

void CMessageHandlerUploadManager::fileStateChanged(const zt_transfers::FileState& file) {
  Json::Value event;
  toJson(file, event);
  callPage(browser_, "_uploadManager_fileStateChanged(", event);
}

}  // namespace zantrio::messages
