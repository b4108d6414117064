#pragma once

#include <Poco/Path.h>

#include <string>
#include <vector>

#include "bridge/drag_handler.h"
#include "bridge/query_handler_base.h"
#include "include/cef_browser.h"

namespace zantrio {

// The bridge through which the page gets files: chosen in a dialog, dragged onto the browser view,
// or handed to the application itself, which are pushed into the page.
//
// Methods, none of which reads its parameters: "selectFiles", "selectFolder" and "handleDrop",
// each answering {"files", "directoryName", "summary"}, or null when the user cancelled or there
// was nothing to take in.
//
// Ownership: as every query handler. Thread: UI.
class CQueryHandlerFileHandleChooser : public CQueryHandlerBase, public IDragHandler {
 public:
  CQueryHandlerFileHandleChooser();

  void setHandlerData(const QueryHandlerContext& context) override;
  Poco::Any getHandlerData(int kind) override;

  // Remembers the paths of a drag that carries files, for the drop that may follow. Throws
  // Poco::BadCastException when the payload is no FileData.
  bool onDragData(const DragMessage& message) override;
  // Ignored while there is no browser with a main frame.
  void filesDropped(const std::vector<std::string>& paths, bool complete, bool defer) override;

 private:
  Json::Value selectFiles(const Json::Value& parameters);
  Json::Value selectFolder(const Json::Value& parameters);
  Json::Value handleDrop(const Json::Value& parameters);

  Json::Value takeInDraggedFiles();
  void rememberDropped(const std::vector<std::string>& paths);

  // The items of the last drag that were not taken in yet.
  std::vector<Poco::Path> draggedFiles_;
  CefRefPtr<CefBrowser> browser_;
};

}  // namespace zantrio
