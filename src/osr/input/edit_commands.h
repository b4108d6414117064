#pragma once

#include "osr/view/osr_view.h"

namespace client {

// What the system's edit menus and edit keys ask for.
enum class EditCommand { kUndo, kRedo, kCut, kCopy, kPaste, kDelete, kSelectAll };

// Has the focused frame of the view's browser do it; nothing without a browser. Thread: UI.
void runEditCommand(const OsrView& view, EditCommand command);

}  // namespace client
