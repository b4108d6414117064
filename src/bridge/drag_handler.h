#pragma once

#include <Poco/Any.h>
#include <Poco/Path.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zantrio {

// The paths of a drag, in the drag's order.
struct FileData {
  std::vector<Poco::Path> paths;
};

// A drag that entered the browser view, as the browser client describes it to the drag handlers.
struct DragMessage {
  static constexpr std::uint32_t kOther = 0;
  static constexpr std::uint32_t kFiles = 1;

  std::uint32_t kind = kOther;
  Poco::Any payload;  // a FileData for kFiles
};

// Offered by query handlers that accept files (IQueryHandler::getHandlerData, kind 1). Ownership:
// the query handler's. Thread: UI.
class IDragHandler {
 public:
  // A drag entered the browser view. True when this handler accepts it.
  virtual bool onDragData(const DragMessage& message) = 0;
  // Items were opened with the application: dropped on its icon, or named on the command line.
  // `paths` are absolute, in UTF-8.
  virtual void filesDropped(const std::vector<std::string>& paths, bool complete, bool defer) = 0;

 protected:
  ~IDragHandler() = default;
};

}  // namespace zantrio
