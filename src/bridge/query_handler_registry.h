#pragma once

#include <Poco/Any.h>
#include <Poco/SharedPtr.h>

#include <map>
#include <string>
#include <vector>

#include "bridge/query_handler.h"

namespace zantrio {

// Maps the bridges' names to their handlers, in ascending byte order of the names. One per process,
// filled when the main browser window has been created and cleared when it closes. Thread: UI.
class QueryHandlerRegistry {
 public:
  using HandlerPtr = Poco::SharedPtr<IQueryHandler>;
  using Entries = std::map<std::string, HandlerPtr>;

  static QueryHandlerRegistry& instance();

  // Releases the handler that was stored under the name before.
  void set(const std::string& name, const HandlerPtr& handler);
  void clear();

  const Entries& entries() const { return entries_; }

  // Releases the handlers that were removed while a query was being answered.
  void releaseRetired();

 private:
  void retire(const HandlerPtr& handler);

  Entries entries_;
  std::vector<HandlerPtr> retired_;
};

// Calls `use` with the object of the given kind of every registered handler that has one, in the
// order of the bridges' names. Data is the interface's type. Thread: UI.
template <class Data, class Use>
void forEachHandlerData(int kind, const Use& use) {
  // A copy: `use` may run an event loop in which the registry is cleared.
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
