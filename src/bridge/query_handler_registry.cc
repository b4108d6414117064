#include "bridge/query_handler_registry.h"

#include "bridge/dispatch_scope.h"

namespace zantrio {

QueryHandlerRegistry& QueryHandlerRegistry::instance() {
  static QueryHandlerRegistry registry;
  return registry;
}

void QueryHandlerRegistry::set(const std::string& name, const HandlerPtr& handler) {
  HandlerPtr& entry = entries_[name];
  retire(entry);
  entry = handler;
}

void QueryHandlerRegistry::clear() {
  // Moved out first: a handler's destructor may access the registry.
  const Entries released = std::move(entries_);
  entries_.clear();
  for (const auto& [name, handler] : released) {
    retire(handler);
  }
}

void QueryHandlerRegistry::retire(const HandlerPtr& handler) {
  if (DispatchScope::active() && !handler.isNull()) {
    retired_.push_back(handler);
  }
}

void QueryHandlerRegistry::releaseRetired() {
  const std::vector<HandlerPtr> released = std::move(retired_);
  retired_.clear();
}

}  // namespace zantrio
