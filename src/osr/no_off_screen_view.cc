// For systems without a view of their own for off-screen browsers.
#include "osr/off_screen_view.h"

namespace client {

std::shared_ptr<OsrView> createOffScreenView(const OffScreenViewOptions& /*options*/,
                                             std::string& error) {
  error = "there is no view for it on this system";
  return nullptr;
}

CefWindowHandle windowOf(const OsrView& /*view*/) {
  return kNullWindowHandle;
}

}  // namespace client
