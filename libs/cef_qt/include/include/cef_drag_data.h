// The data of a drag.
#ifndef CEF_INCLUDE_CEF_DRAG_DATA_H_
#define CEF_INCLUDE_CEF_DRAG_DATA_H_

#include <vector>

#include "include/cef_base.h"
#include "include/cef_stream.h"

class CefDragData : public virtual CefBaseRefCounted {
 public:
  static CefRefPtr<CefDragData> Create();

  // A copy that can be changed.
  virtual CefRefPtr<CefDragData> Clone() = 0;
  virtual bool IsReadOnly() = 0;
  virtual bool IsLink() = 0;
  // Text or markup.
  virtual bool IsFragment() = 0;
  virtual bool IsFile() = 0;
  virtual CefString GetLinkURL() = 0;
  virtual CefString GetLinkTitle() = 0;
  virtual CefString GetFragmentText() = 0;
  virtual CefString GetFragmentHtml() = 0;
  // The file name for the dragged contents.
  virtual CefString GetFileName() = 0;
  // Writes the dragged contents and returns their size. A null writer only queries the size.
  virtual size_t GetFileContents(CefRefPtr<CefStreamWriter> writer) = 0;
  // Display names of the dragged files. False if there are none.
  virtual bool GetFileNames(std::vector<CefString>& names) = 0;
  // Paths of the dragged files. False if there are none.
  virtual bool GetFilePaths(std::vector<CefString>& paths) = 0;
  virtual void SetLinkURL(const CefString& url) = 0;
  virtual void SetFragmentText(const CefString& text) = 0;
  virtual void AddFile(const CefString& path, const CefString& display_name) = 0;
};

#endif  // CEF_INCLUDE_CEF_DRAG_DATA_H_
