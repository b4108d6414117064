#include "osr/input/edit_commands.h"

#include "include/cef_frame.h"

namespace client {
namespace {

void run(CefFrame& frame, EditCommand command) {
  switch (command) {
    case EditCommand::kUndo:
      return frame.Undo();
    case EditCommand::kRedo:
      return frame.Redo();
    case EditCommand::kCut:
      return frame.Cut();
    case EditCommand::kCopy:
      return frame.Copy();
    case EditCommand::kPaste:
      return frame.Paste();
    case EditCommand::kDelete:
      return frame.Delete();
    case EditCommand::kSelectAll:
      return frame.SelectAll();
  }
}

}  // namespace

void runEditCommand(const OsrView& view, EditCommand command) {
  const CefRefPtr<CefBrowser> browser = view.browser();
  const CefRefPtr<CefFrame> frame = browser ? browser->GetFocusedFrame() : nullptr;
  if (frame) {
    run(*frame, command);
  }
}

}  // namespace client
