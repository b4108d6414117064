#include "bridge/dispatch_scope.h"

#include "bridge/query_handler_registry.h"

namespace zantrio {
namespace {

int depth = 0;

}  // namespace

DispatchScope::DispatchScope() {
  ++depth;
}

DispatchScope::~DispatchScope() {
  if (--depth == 0) {
    QueryHandlerRegistry::instance().releaseRetired();
  }
}

bool DispatchScope::active() {
  return depth > 0;
}

}  // namespace zantrio
