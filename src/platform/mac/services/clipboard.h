#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include "platform/mac/base/system_text.h"
#include "services/clipboard.h"

namespace zantrio {

// The system's general pasteboard for what is copied.
class CClipboardMac : public IClipboard {
 public:
  CClipboardMac();

  bool copyText(const std::string& text) override;

 private:
  const CfOwned<PasteboardRef> pasteboard_;  // null when it could not be opened
};

}  // namespace zantrio
