#pragma once

#include "services/alert_dialog.h"

namespace zantrio {

class CAlertDialogLinux : public IAlertDialog {
 public:
  void show(const std::string& text) override;
};

}  // namespace zantrio
