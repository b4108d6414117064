#include "src/fakes/fake_browser.h"

namespace zantrio::test {
namespace {

std::string at(const CefMouseEvent& event) {
  return std::to_string(event.x) + "," + std::to_string(event.y) + " flags " +
         std::to_string(event.modifiers);
}

std::string spanOf(const cef_range_t& range) {
  const bool none = range.from == UINT32_MAX && range.to == UINT32_MAX;
  return none ? "none" : std::to_string(range.from) + "-" + std::to_string(range.to);
}

}  // namespace

void FakeFrame::LoadURL(const CefString& target) {
  loads.push_back(target.ToString());
  url = loads.back();
}

void FakeFrame::ExecuteJavaScript(const CefString& code, const CefString& script_url,
                                  int start_line) {
  scripts.push_back({code.ToString(), script_url.ToString(), start_line});
}

void FakeHost::CloseBrowser(bool force_close) {
  closeCalls.push_back(force_close);
  if (onClose) {
    onClose();
  }
}

void FakeHost::Invalidate(PaintElementType type) {
  lines.emplace_back(type == PET_VIEW ? "invalidate view" : "invalidate popup");
  if (onInvalidate) {
    onInvalidate(type);
  }
}

void FakeHost::SendKeyEvent(const CefKeyEvent& event) {
  const char* const names[] = {"raw down", "down", "up", "char"};
  lines.push_back(std::string(names[event.type]) + " " + std::to_string(event.windows_key_code) +
                  "/" + std::to_string(event.native_key_code) + " types " +
                  std::to_string(event.character) + " flags " + std::to_string(event.modifiers));
}

void FakeHost::SendMouseClickEvent(const CefMouseEvent& event, MouseButtonType type, bool mouseUp,
                                   int clickCount) {
  const char* const names[] = {"left", "middle", "right"};
  lines.push_back("click " + at(event) + " " + names[type] + (mouseUp ? " up x" : " down x") +
                  std::to_string(clickCount));
}

void FakeHost::SendMouseMoveEvent(const CefMouseEvent& event, bool mouseLeave) {
  lines.push_back((mouseLeave ? "move out " : "move ") + at(event));
}

void FakeHost::SendMouseWheelEvent(const CefMouseEvent& event, int deltaX, int deltaY) {
  lines.push_back("wheel " + at(event) + " by " + std::to_string(deltaX) + "," +
                  std::to_string(deltaY));
}

void FakeHost::ImeSetComposition(const CefString& text,
                                 const std::vector<CefCompositionUnderline>& underlines,
                                 const CefRange& replaced, const CefRange& selected) {
  std::string line = "compose '" + text.ToString() + "'";
  for (const CefCompositionUnderline& underline : underlines) {
    line += (underline.thick ? " thick " : " thin ") + spanOf(underline.range);
  }
  lines.push_back(line + " selected " + spanOf(selected) + " for " + spanOf(replaced));
}

void FakeHost::ImeCommitText(const CefString& text, const CefRange& replaced, int /*cursor*/) {
  lines.push_back("commit '" + text.ToString() + "' for " + spanOf(replaced));
}

void FakeHost::DragTargetDragEnter(CefRefPtr<CefDragData> data, const CefMouseEvent& event,
                                   DragOperationsMask allowed) {
  entered = data;
  lines.push_back("enter " + at(event) + " allowed " + std::to_string(allowed));
}

void FakeHost::DragTargetDragOver(const CefMouseEvent& event, DragOperationsMask allowed) {
  lines.push_back("over " + at(event) + " allowed " + std::to_string(allowed));
}

void FakeHost::DragTargetDrop(const CefMouseEvent& event) {
  lines.push_back("drop " + at(event));
}

void FakeHost::DragSourceEndedAt(int x, int y, DragOperationsMask op) {
  lines.push_back("ended " + std::to_string(x) + "," + std::to_string(y) + " with " +
                  std::to_string(op));
}

bool FakeDragData::GetFileNames(std::vector<CefString>& names) {
  names.assign(paths_.size(), CefString("a display name"));
  return !paths_.empty();
}

bool FakeDragData::GetFilePaths(std::vector<CefString>& paths) {
  paths.assign(paths_.begin(), paths_.end());
  return !paths_.empty();
}

}  // namespace zantrio::test
