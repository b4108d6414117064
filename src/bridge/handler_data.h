#pragma once

#include <Poco/Any.h>

#include "bridge/query_handler_registry.h"

namespace zantrio {

// Calls `use` with the object of the given kind of every registered handler that has one, in the
// order of the bridges' names. Data is the interface's type. Thread: UI.
template <class Data, class Use>
void forEachHandlerData(int kind, const Use& use) {
  // A copy: what is called may run an event loop in which the registry is cleared.
  QueryHandlerRegistry::Entries entries = QueryHandlerRegistry::instance().entries();
  for (auto& [name, handler] : entries) {
    if (handler.isNull()) {
      continue;
    }
    Poco::Any data = handler->getHandlerData(kind);
    if (Data* const* object = Poco::AnyCast<Data*>(&data)) {
      use(**object);
    }
  }
}

}  // namespace zantrio
