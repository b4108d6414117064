#include "files/query_handler_file_handle_chooser.h"

#include <Poco/Any.h>

#include <memory>
#include <utility>

#include "app/log/logger.h"
#include "bridge/drag_handler.h"
#include "bridge/query_handler_context.h"
#include "files/choose_dialogs.h"
#include "files/chosen_items.h"
#include "files/file_drop.h"
#include "files/item_choice.h"
#include "include/cef_frame.h"
#include "services/file_permissions_retriever.h"

namespace zantrio {
namespace {

std::string unreadableText(const std::string& path) {
  return "Zantrio does not have read permissions to " + path + ". Please select another item.";
}

// False when the user chose nothing.
template <class Dialog>
bool chooseReadable(const std::unique_ptr<Dialog>& dialog, const std::string& title,
                    std::vector<std::string>& urls) {
  return choosePermittedItems(dialog, title, {IFilePermissionsRetriever::kRead, unreadableText},
                              urls);
}

void pushIntoPage(CefFrame& frame, const Json::Value& drop) {
  frame.ExecuteJavaScript("setTimeout(function() { window._fileHandleChooser_handleDropFiles(" +
                              drop.toStyledString() + ")}, 0);",
                          frame.GetURL(), 0);
}

}  // namespace

CQueryHandlerFileHandleChooser::CQueryHandlerFileHandleChooser() {
  registerMethod("selectFiles", &CQueryHandlerFileHandleChooser::selectFiles);
  registerMethod("selectFolder", &CQueryHandlerFileHandleChooser::selectFolder);
  registerMethod("handleDrop", &CQueryHandlerFileHandleChooser::handleDrop);
}

void CQueryHandlerFileHandleChooser::setHandlerData(const QueryHandlerContext& context) {
  CQueryHandlerBase::setHandlerData(context);
  browser_ = context.browser;
}

Poco::Any CQueryHandlerFileHandleChooser::getHandlerData(int kind) {
  if (kind == kDragHandler) {
    return Poco::Any(static_cast<IDragHandler*>(this));
  }
  return CQueryHandlerBase::getHandlerData(kind);
}

bool CQueryHandlerFileHandleChooser::onDragData(const DragMessage& message) {
  if (message.kind != DragMessage::kFiles) {
    return false;
  }
  draggedFiles_ = Poco::RefAnyCast<FileData>(message.payload).paths;
  return true;
}

void CQueryHandlerFileHandleChooser::filesDropped(const std::vector<std::string>& paths,
                                                  bool complete, bool defer) {
  const CefRefPtr<CefFrame> frame = browser_ ? browser_->GetMainFrame() : nullptr;
  if (!frame) {
    return;
  }
  storeDroppedPaths(paths);
  Json::Value drop = describeDraggedFiles();
  drop["complete"] = complete;
  drop["defer"] = defer;
  pushIntoPage(*frame, drop);
}

Json::Value CQueryHandlerFileHandleChooser::selectFiles(const Json::Value&) {
  std::vector<std::string> urls;
  if (!chooseReadable(createFileChooseDialog(), "Choose files", urls)) {
    return {};
  }
  return describeChosenFiles(urls);
}

Json::Value CQueryHandlerFileHandleChooser::selectFolder(const Json::Value&) {
  std::vector<std::string> urls;
  if (!chooseReadable(createFolderChooseDialog(), "Choose folder", urls) || urls.empty()) {
    return {};
  }
  return describeChosenFolder(urls.front());
}

Json::Value CQueryHandlerFileHandleChooser::handleDrop(const Json::Value&) {
  return describeDraggedFiles();
}

Json::Value CQueryHandlerFileHandleChooser::describeDraggedFiles() {
  if (draggedFiles_.empty()) {
    logError("FileHandleChooser: handleDrop method called, but no files where previously dragged!");
    return {};
  }
  return CFileDrop(std::exchange(draggedFiles_, {})).describe();
}

void CQueryHandlerFileHandleChooser::storeDroppedPaths(const std::vector<std::string>& paths) {
  draggedFiles_.clear();
  draggedFiles_.reserve(paths.size());
  logInformation("The following files have been dropped to app dock icon: ");
  for (const std::string& path : paths) {
    logInformation("\t", path);
    draggedFiles_.emplace_back(path);
  }
}

}  // namespace zantrio
