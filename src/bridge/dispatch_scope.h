#pragma once

namespace zantrio {

// Marks that a query is being answered. A method may run a nested event loop in which the browser
// closes, so the registry keeps removed handlers alive while any scope exists. Thread: UI.
class DispatchScope {
 public:
  DispatchScope();
  DispatchScope(const DispatchScope&) = delete;
  DispatchScope& operator=(const DispatchScope&) = delete;
  ~DispatchScope();

  static bool active();
};

}  // namespace zantrio
