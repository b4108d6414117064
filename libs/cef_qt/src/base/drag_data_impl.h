// The data of a drag.
#pragma once

#include <string>
#include <vector>

#include "include/cef_drag_data.h"

namespace cef_qt {

struct DragContents {
  struct File {
    CefString path;
    CefString displayName;
  };

  CefString linkUrl;
  CefString linkTitle;
  CefString fragmentText;
  CefString fragmentHtml;
  CefString contentsName;
  std::string contents;
  std::vector<File> files;
};

class DragData final : public CefDragData {
 public:
  DragData(DragContents contents, bool readOnly)
      : contents_(std::move(contents)), readOnly_(readOnly) {}

  CefRefPtr<CefDragData> Clone() override { return new DragData(contents_, false); }
  bool IsReadOnly() override { return readOnly_; }
  bool IsLink() override { return !contents_.linkUrl.empty(); }
  bool IsFragment() override;
  bool IsFile() override { return !contents_.files.empty(); }
  CefString GetLinkURL() override { return contents_.linkUrl; }
  CefString GetLinkTitle() override { return contents_.linkTitle; }
  CefString GetFragmentText() override { return contents_.fragmentText; }
  CefString GetFragmentHtml() override { return contents_.fragmentHtml; }
  CefString GetFileName() override { return contents_.contentsName; }
  size_t GetFileContents(CefRefPtr<CefStreamWriter> writer) override;
  bool GetFileNames(std::vector<CefString>& names) override;
  bool GetFilePaths(std::vector<CefString>& paths) override;
  void SetLinkURL(const CefString& url) override;
  void SetFragmentText(const CefString& text) override;
  void AddFile(const CefString& path, const CefString& display_name) override;

 private:
  DragContents contents_;
  const bool readOnly_;
  IMPLEMENT_REFCOUNTING(DragData);
};

}  // namespace cef_qt
