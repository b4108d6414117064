// Command lines of the framework's processes.
#ifndef CEF_INCLUDE_CEF_COMMAND_LINE_H_
#define CEF_INCLUDE_CEF_COMMAND_LINE_H_

#include <map>
#include <vector>

#include "include/cef_base.h"

// Program, switches (`--name`, `--name=value`) and arguments. Switch names are in lower case,
// without dashes. Not thread-safe.
class CefCommandLine : public virtual CefBaseRefCounted {
 public:
  using ArgumentList = std::vector<CefString>;
  using SwitchMap = std::map<CefString, CefString>;

  static CefRefPtr<CefCommandLine> CreateCommandLine();
  // The command line of this process; read-only. Null before CefInitialize.
  static CefRefPtr<CefCommandLine> GetGlobalCommandLine();

  virtual bool IsValid() = 0;
  virtual bool IsReadOnly() = 0;
  virtual CefRefPtr<CefCommandLine> Copy() = 0;
  virtual void InitFromArgv(int argc, const char* const* argv) = 0;
  virtual void Reset() = 0;
  // Program, switches and arguments in their original form.
  virtual void GetArgv(std::vector<CefString>& argv) = 0;
  virtual CefString GetCommandLineString() = 0;
  virtual CefString GetProgram() = 0;
  virtual void SetProgram(const CefString& program) = 0;
  virtual bool HasSwitches() = 0;
  virtual bool HasSwitch(const CefString& name) = 0;
  virtual CefString GetSwitchValue(const CefString& name) = 0;
  virtual void GetSwitches(SwitchMap& switches) = 0;
  virtual void AppendSwitch(const CefString& name) = 0;
  virtual void AppendSwitchWithValue(const CefString& name, const CefString& value) = 0;
  virtual bool HasArguments() = 0;
  virtual void GetArguments(ArgumentList& arguments) = 0;
  virtual void AppendArgument(const CefString& argument) = 0;
};

#endif  // CEF_INCLUDE_CEF_COMMAND_LINE_H_
