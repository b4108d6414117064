#include "app/register_query_handlers.h"

#include <exception>

#include "app/log/logger.h"
#include "bridge/bridge_names.h"
#include "files/query_handler_file_handle_chooser.h"
#include "services/query_handler_address_book_manager.h"
#include "services/query_handler_event_notification.h"
#include "services/query_handler_native_app.h"
#include "transfers/query_handler_download_manager.h"
#include "transfers/query_handler_upload_manager.h"

namespace zantrio {
namespace {

template <class Handler>
QueryHandlerRegistry::HandlerPtr create() {
  return QueryHandlerRegistry::HandlerPtr(new Handler);
}

const std::vector<QueryBridge>& applicationBridges() {
  static const std::vector<QueryBridge> bridges = {
      {bridge_names::kNativeApp, create<CQueryHandlerNativeApp>},
      {bridge_names::kUploads, create<CQueryHandlerUploadManager>},
      {bridge_names::kDownloads, create<CQueryHandlerDownloadManager>},
      {bridge_names::kFiles, create<CQueryHandlerFileHandleChooser>},
      {bridge_names::kNotifications, create<CQueryHandlerEventNotification>},
      {bridge_names::kAddressBook, create<CQueryHandlerAddressBookManager>},
  };
  return bridges;
}

void registerBridge(const QueryBridge& bridge) {
  try {
    QueryHandlerRegistry::instance().set(bridge.name, bridge.createHandler());
  } catch (const std::exception& exception) {
    logError("Query handler for name ", bridge.name,
             " is not registered due to exception: ", exception.what());
  }
}

}  // namespace

void registerQueryHandlers() {
  registerQueryHandlers(applicationBridges());
}

void registerQueryHandlers(const std::vector<QueryBridge>& bridges) {
  for (const QueryBridge& bridge : bridges) {
    registerBridge(bridge);
  }
}

}  // namespace zantrio
