#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bridge/query_handler_registry.h"

namespace zantrio {

// One bridge: the page's query function and the factory of its handler.
struct QueryBridge {
  std::string name;
  std::function<QueryHandlerRegistry::HandlerPtr()> createHandler;
};

// Creates the handler of every bridge and stores it in QueryHandlerRegistry under the bridge's
// name. A bridge whose handler cannot be created is logged and left out. Thread: UI.
void registerQueryHandlers();
void registerQueryHandlers(const std::vector<QueryBridge>& bridges);

}  // namespace zantrio
