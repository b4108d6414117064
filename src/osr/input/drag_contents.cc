#include "osr/input/drag_contents.h"

#include <filesystem>

namespace client {
namespace {

bool exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(path, error);
}

}  // namespace

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

DragKinds kindsOf(CefDragData& data) {
  return {data.IsLink(), data.GetFileContents(nullptr) > 0, !data.GetFragmentText().empty()};
}

CefRefPtr<BytesWriteHandler> fileContentsOf(CefDragData& data) {
  const std::size_t size = data.GetFileContents(nullptr);
  if (size == 0) {
    return nullptr;
  }
  const CefRefPtr<BytesWriteHandler> bytes(new BytesWriteHandler(size));
  data.GetFileContents(CefStreamWriter::CreateForHandler(bytes));
  // There are fewer when memory ran out. A file that is cut short would pass for a whole one.
  return bytes->size() == static_cast<int64_t>(size) ? bytes : nullptr;
}

cef_drag_operations_mask_t reportedOperation(unsigned int operation) {
  constexpr unsigned int kCopyAndMove = DRAG_OPERATION_COPY | DRAG_OPERATION_MOVE;
  return operation == kCopyAndMove ? DRAG_OPERATION_COPY
                                   : static_cast<cef_drag_operations_mask_t>(operation);
}

}  // namespace client
