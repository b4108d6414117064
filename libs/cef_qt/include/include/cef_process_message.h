// Messages between the browser side and the render side.
#ifndef CEF_INCLUDE_CEF_PROCESS_MESSAGE_H_
#define CEF_INCLUDE_CEF_PROCESS_MESSAGE_H_

#include "include/cef_base.h"
#include "include/cef_values.h"

using CefProcessId = cef_process_id_t;

// A name and arguments. After it was sent a message is no longer valid for its sender.
class CefProcessMessage : public virtual CefBaseRefCounted {
 public:
  static CefRefPtr<CefProcessMessage> Create(const CefString& name);

  virtual bool IsValid() = 0;
  // A received message is read-only.
  virtual bool IsReadOnly() = 0;
  // A message with the same name and copies of the arguments, which can be changed.
  virtual CefRefPtr<CefProcessMessage> Copy() = 0;
  virtual CefString GetName() = 0;
  virtual CefRefPtr<CefListValue> GetArgumentList() = 0;
};

#endif  // CEF_INCLUDE_CEF_PROCESS_MESSAGE_H_
