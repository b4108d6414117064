#include "base/drag_data_impl.h"

namespace cef_qt {

bool DragData::IsFragment() {
  return !contents_.fragmentText.empty() || !contents_.fragmentHtml.empty();
}

size_t DragData::GetFileContents(CefRefPtr<CefStreamWriter> writer) {
  const std::string& bytes = contents_.contents;
  if (!writer || bytes.empty()) {
    return bytes.size();
  }
  return writer->Write(bytes.data(), 1, bytes.size());
}

bool DragData::GetFileNames(std::vector<CefString>& names) {
  names.clear();
  for (const DragContents::File& file : contents_.files) {
    names.push_back(file.displayName);
  }
  return !names.empty();
}

bool DragData::GetFilePaths(std::vector<CefString>& paths) {
  paths.clear();
  for (const DragContents::File& file : contents_.files) {
    paths.push_back(file.path);
  }
  return !paths.empty();
}

void DragData::SetLinkURL(const CefString& url) {
  if (!readOnly_) {
    contents_.linkUrl = url;
  }
}

void DragData::SetFragmentText(const CefString& text) {
  if (!readOnly_) {
    contents_.fragmentText = text;
  }
}

void DragData::AddFile(const CefString& path, const CefString& display_name) {
  if (!readOnly_) {
    contents_.files.push_back({path, display_name});
  }
}

}  // namespace cef_qt

CefRefPtr<CefDragData> CefDragData::Create() {
  return new cef_qt::DragData({}, false);
}
