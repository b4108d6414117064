#pragma once

#include <Poco/Any.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zantrio {

// What the browser client tells the drag handlers about a drag that entered the browser view.
struct DragMessage {
  static constexpr std::uint32_t kOther = 0;
  static constexpr std::uint32_t kFiles = 1;

  std::uint32_t kind = kOther;
  Poco::Any payload;  // for kFiles a FileData
};

// Offered by query handlers that take in files (IQueryHandler::getHandlerData, kind 1).
// Ownership: the query handler's own. Thread: UI.
class IDragHandler {
 public:
  // A drag entered the browser view. True when this handler takes the message.
  virtual bool onDragData(const DragMessage& message) = 0;
  // Items were handed to the application itself: dropped on its icon, named when it was started.
  // `paths` are absolute, in UTF-8.
  virtual void filesDropped(const std::vector<std::string>& paths, bool complete, bool defer) = 0;

 protected:
  ~IDragHandler() = default;
};

}  // namespace zantrio
