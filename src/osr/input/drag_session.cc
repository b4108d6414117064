#include "osr/input/drag_session.h"

#include <filesystem>
#include <utility>

#include "osr/input/drag_out.h"

namespace client {
namespace {

bool exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(path, error);
}

// Adds the text, and every path that exists.
void populateDropData(CefDragData& data, const DroppedItems& items) {
  if (items.text) {
    data.SetFragmentText(*items.text);
  }
  for (const std::string& path : items.paths) {
    if (exists(path)) {
      data.AddFile(path, std::filesystem::path(path).filename().string());
    }
  }
}

}  // namespace

void DragSession::begin(CefRefPtr<CefDragData> data, cef_drag_operations_mask_t allowed) {
  resetDragDrop();
  currentDragData_ = std::move(data);
  currentAllowedOps_ = allowed;
}

void DragSession::endedAt(const OsrPoint& point, unsigned int operation) {
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    target->DragSourceEndedAt(static_cast<int>(point.x), static_cast<int>(point.y),
                              reportedOperation(operation));
    target->DragSourceSystemDragEnded();
  }
  resetDragDrop();
}

void DragSession::entered(const CefMouseEvent& at, const DroppedItems& items,
                          cef_drag_operations_mask_t sourceOperations) {
  currentDragOp_ = DRAG_OPERATION_NONE;  // clears the previous drag's
  const CefRefPtr<CefBrowserHost> target = host();
  if (!target) {
    return;
  }
  CefRefPtr<CefDragData> data;
  if (currentDragData_) {
    data = currentDragData_->Clone();
  } else {
    data = CefDragData::Create();
    populateDropData(*data, items);
  }
  target->DragTargetDragEnter(data, at, sourceOperations);
}

cef_drag_operations_mask_t DragSession::moved(const CefMouseEvent& at,
                                              cef_drag_operations_mask_t sourceOperations) {
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    target->DragTargetDragOver(at, sourceOperations);
  }
  return currentDragOp_;
}

void DragSession::exited() {
  currentDragOp_ = DRAG_OPERATION_NONE;
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    target->DragTargetDragLeave();
  }
}

bool DragSession::performed(const CefMouseEvent& at) {
  currentDragOp_ = DRAG_OPERATION_NONE;
  if (const CefRefPtr<CefBrowserHost> target = host()) {
    target->DragTargetDrop(at);
  }
  return true;
}

CefRefPtr<CefBrowserHost> DragSession::host() const {
  const CefRefPtr<CefBrowser> browser = view_.browser();
  return browser ? browser->GetHost() : nullptr;
}

void DragSession::resetDragDrop() {
  currentDragOp_ = DRAG_OPERATION_NONE;
  currentAllowedOps_ = DRAG_OPERATION_NONE;
  currentDragData_ = nullptr;
}

}  // namespace client
