#include "browser/off_screen.h"

#include <atomic>

namespace cef_qt {
namespace {

std::atomic<const OffScreenFactory*> current{nullptr};

}  // namespace

void setOffScreenFactory(const OffScreenFactory* factory) {
  current = factory;
}

const OffScreenFactory* offScreenFactory() {
  return current;
}

}  // namespace cef_qt
