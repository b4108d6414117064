#include "app/register_query_handlers.h"

#include <exception>

#include "app/log/logger.h"
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
      {"nativeAppBridge_IPC", create<CQueryHandlerNativeApp>},
      {"uploadManagerBridge_IPC", create<CQueryHandlerUploadManager>},
      {"downloadManagerBridge_IPC", create<CQueryHandlerDownloadManager>},
      {"fileHandleChooserBridge_IPC", create<CQueryHandlerFileHandleChooser>},
      {"eventNotificationBridge_IPC", create<CQueryHandlerEventNotification>},
      {"addressBookSearchManagerBridge_IPC", create<CQueryHandlerAddressBookManager>},
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
