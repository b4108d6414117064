#pragma once

#include <Poco/SharedPtr.h>

#include <map>
#include <string>
#include <vector>

#include "bridge/query_handler.h"

namespace zantrio {

// The table from bridge name to handler, in ascending byte order of the names. One a process,
// filled when the main browser window has been created and cleared when it closes. Thread: UI.
class QueryHandlerRegistry {
 public:
  using HandlerPtr = Poco::SharedPtr<IQueryHandler>;
  using Entries = std::map<std::string, HandlerPtr>;

  static QueryHandlerRegistry& instance();

  // A handler that is there under the name already is released.
  void set(const std::string& name, const HandlerPtr& handler);
  void clear();

  const Entries& entries() const { return entries_; }

  // Ends the life of handlers that were given up while a query was being answered.
  void releaseRetired();

 private:
  void retire(const HandlerPtr& handler);

  Entries entries_;
  std::vector<HandlerPtr> retired_;
};

}  // namespace zantrio
