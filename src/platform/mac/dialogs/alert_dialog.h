#pragma once

#include "services/alert_dialog.h"

namespace zantrio {

// The notice is the system's: it belongs to no window and outlives the application.
class CAlertDialogMac : public IAlertDialog {
 public:
  // The text's bytes are taken as Mac Roman.
  void show(const std::string& text) override;
};

}  // namespace zantrio
