// Entries of a browser's history.
#ifndef CEF_INCLUDE_CEF_NAVIGATION_ENTRY_H_
#define CEF_INCLUDE_CEF_NAVIGATION_ENTRY_H_

#include "include/cef_base.h"

// A snapshot. Any thread.
class CefNavigationEntry : public virtual CefBaseRefCounted {
 public:
  virtual bool IsValid() = 0;
  // Of a page that could not be loaded: the URL that was asked for.
  virtual CefString GetURL() = 0;
  // The status of the page's HTTP response; 0 if it could not be loaded, and for other schemes.
  // Not reliable while a page loads.
  virtual int GetHttpStatusCode() = 0;
};

#endif  // CEF_INCLUDE_CEF_NAVIGATION_ENTRY_H_
