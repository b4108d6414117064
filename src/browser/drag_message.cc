#include "browser/drag_message.h"

#include <vector>

#include "bridge/drag_handler.h"
#include "bridge/query_handler_registry.h"

namespace zantrio {

DragMessage toDragMessage(const CefRefPtr<CefDragData>& data) {
  DragMessage message;
  message.kind = data->IsFile() ? DragMessage::kFiles : DragMessage::kOther;
  std::vector<CefString> paths;
  data->GetFilePaths(paths);
  FileData files;
  files.paths.reserve(paths.size());
  for (const CefString& path : paths) {
    files.paths.emplace_back(path.ToString());
  }
  message.payload = files;
  return message;
}

bool offerDrag(const DragMessage& message) {
  bool accepted = false;
  forEachHandlerData<IDragHandler>(IQueryHandler::kDragHandler, [&](IDragHandler& handler) {
    accepted = handler.onDragData(message) || accepted;
  });
  return accepted;
}

}  // namespace zantrio
