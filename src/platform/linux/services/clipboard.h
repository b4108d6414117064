#pragma once

#include "services/clipboard.h"

class QClipboard;

namespace zantrio {

// The toolkit keeps the text for the other programs, and hands it to the desktop's clipboard
// manager, where there is one, when the application ends.
class CClipboardLinux : public IClipboard {
 public:
  CClipboardLinux();

  bool copyText(const std::string& text) override;

 private:
  QClipboard* const clipboard_;  // the application's; null without an application
};

}  // namespace zantrio
