#pragma once

#include <Poco/Path.h>

#include <string>
#include <vector>

#include "bridge/drag_handler.h"
#include "bridge/query_handler_base.h"
#include "include/cef_browser.h"

namespace zantrio {

// The bridge "fileHandleChooserBridge_IPC", through which the page receives files: chosen in a
// dialog, dragged onto the browser view, or opened with the application, which are pushed into the
// page.
//
// The methods "selectFiles", "selectFolder" and "handleDrop" ignore their parameters. Each responds
// with {"files", "directoryName", "summary"}, or null when the user cancelled or there was nothing
// to describe.
//
// Ownership: as every query handler. Thread: UI.
class CQueryHandlerFileHandleChooser : public CQueryHandlerBase, public IDragHandler {
 public:
  CQueryHandlerFileHandleChooser();

  void setHandlerData(const QueryHandlerContext& context) override;
  Poco::Any getHandlerData(int kind) override;

  // Stores the paths of a drag that carries files until it is dropped. Throws
  // Poco::BadCastException when the payload is not a FileData.
  bool onDragData(const DragMessage& message) override;
  // Ignored when the browser has no main frame.
  void filesDropped(const std::vector<std::string>& paths, bool complete, bool defer) override;

 private:
  Json::Value selectFiles(const Json::Value& parameters);
  Json::Value selectFolder(const Json::Value& parameters);
  Json::Value handleDrop(const Json::Value& parameters);

  Json::Value describeDraggedFiles();
  void storeDroppedPaths(const std::vector<std::string>& paths);

  // The items of the last drag that was not dropped yet.
  std::vector<Poco::Path> draggedFiles_;
  CefRefPtr<CefBrowser> browser_;
};

}  // namespace zantrio
