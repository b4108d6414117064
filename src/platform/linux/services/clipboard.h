#pragma once

#include "services/clipboard.h"

class QClipboard;

namespace zantrio {

// Qt serves the text to other programs and passes it to the desktop's clipboard manager, if any,
// when the application ends.
class CClipboardLinux : public IClipboard {
 public:
  CClipboardLinux();

  bool copyText(const std::string& text) override;

 private:
  QClipboard* const clipboard_;  // the application's; null without an application
};

}  // namespace zantrio
