#pragma once

#include <exception>

#include "app/logger.h"

namespace zantrio {

// The outer level of a framework callback, posted task or timer task: no exception may leave it,
// so everything is caught and logged under the operation's name.
template <class Body>
void guarded(const char* operation, const Body& body) noexcept {
  try {
    body();
  } catch (const std::exception& exception) {
    logError(operation, ": Exception: ", exception.what());
  } catch (...) {
    logError(operation, ": Exception: ", "unknown");
  }
}

// As above for operations with a result: `fallback` when an exception was caught.
template <class Result, class Body>
Result guarded(const char* operation, Result fallback, const Body& body) noexcept {
  guarded(operation, [&] { fallback = body(); });
  return fallback;
}

}  // namespace zantrio
