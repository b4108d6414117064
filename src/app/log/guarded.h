#pragma once

#include <exception>

#include "app/log/logger.h"

namespace zantrio {

// Logs what was caught. Where not even that can be done, there is nobody left to tell.
inline void logCaught(const char* operation, const char* text) noexcept {
  try {
    logError(operation, ": Exception: ", text);
  } catch (...) {
  }
}

// The outer level of a framework callback, posted task or timer task: no exception may leave it,
// so everything is caught and logged under the operation's name.
template <class Body>
void guarded(const char* operation, const Body& body) noexcept {
  try {
    body();
  } catch (const std::exception& exception) {
    logCaught(operation, exception.what());
  } catch (...) {
    logCaught(operation, "unknown");
  }
}

// As above for operations with a result: `fallback` when an exception was caught.
template <class Result, class Body>
Result guarded(const char* operation, Result fallback, const Body& body) noexcept {
  guarded(operation, [&] { fallback = body(); });
  return fallback;
}

}  // namespace zantrio
