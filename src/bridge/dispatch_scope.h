#pragma once

namespace zantrio {

// Marks that a query is being answered. While any is, handlers that the registry gives up stay
// alive: a method may run a nested event loop in which the browser closes. Thread: UI.
class DispatchScope {
 public:
  DispatchScope();
  DispatchScope(const DispatchScope&) = delete;
  DispatchScope& operator=(const DispatchScope&) = delete;
  ~DispatchScope();

  static bool active();
};

}  // namespace zantrio
