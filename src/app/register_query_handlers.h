#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bridge/query_handler_registry.h"

namespace zantrio {

// One bridge: the page's query function and what makes its handler.
struct QueryBridge {
  std::string name;
  std::function<QueryHandlerRegistry::HandlerPtr()> createHandler;
};

// Makes the handler of every bridge and stores it under the bridge's name. A bridge whose handler
// cannot be made is logged and left out. Thread: UI, or the render process's main thread.
void registerQueryHandlers();
void registerQueryHandlers(const std::vector<QueryBridge>& bridges);

}  // namespace zantrio
