#include "transfers/state_names.h"

namespace zantrio {
namespace {

constexpr const char* kTransferring = "TRANSFERRING";
constexpr const char* kErrored = "ERRORED";
constexpr const char* kCompleted = "COMPLETED";
constexpr const char* kPaused = "PAUSED";
constexpr const char* kUnknown = "UNKNWON";

}  // namespace

const char* groupStateName(std::int32_t code) {
  switch (code) {
    case 1:
      return kTransferring;
    case 2:
      return kErrored;
    case 3:
      return kCompleted;
    case 4:
      return kPaused;
    default:
      return kUnknown;
  }
}

const char* fileStateName(std::int32_t code) {
  switch (code) {
    case 0:
      return kTransferring;
    case 1:
      return kCompleted;
    case 2:
      return kErrored;
    case 3:
      return kPaused;
    default:
      return kUnknown;
  }
}

}  // namespace zantrio
