#pragma once

#include "services/alert_dialog.h"
#include "services/confirm_dialog.h"

namespace zantrio {

// Notices are top-level windows above all others. They have no parent, so that they outlive every
// window and stay usable while a modal dialog blocks its window.
class CAlertDialogLinux : public IAlertDialog {
 public:
  void show(const std::string& text) override;
};

class CConfirmDialogLinux : public IConfirmDialog {
 public:
  // A question that closes unanswered, with its window or the application, counts as "No".
  bool ask(const std::string& text, int kind) override;
};

}  // namespace zantrio
