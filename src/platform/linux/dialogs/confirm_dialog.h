#pragma once

#include "services/confirm_dialog.h"

namespace zantrio {

class CConfirmDialogLinux : public IConfirmDialog {
 public:
  // A question that goes away unanswered, with its window or with the application, counts as "No".
  bool ask(const std::string& text, int kind) override;
};

}  // namespace zantrio
