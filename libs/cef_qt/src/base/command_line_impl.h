// A parsed command line: program, switches and arguments.
#pragma once

#include <vector>

#include "include/cef_command_line.h"

namespace cef_qt {

class CommandLine final : public CefCommandLine {
 public:
  bool IsValid() override { return true; }
  bool IsReadOnly() override { return readOnly_; }
  CefRefPtr<CefCommandLine> Copy() override;
  void InitFromArgv(int argc, const char* const* argv) override;
  void Reset() override;
  void GetArgv(std::vector<CefString>& argv) override;
  CefString GetCommandLineString() override;
  CefString GetProgram() override { return program_; }
  void SetProgram(const CefString& program) override;
  bool HasSwitches() override { return !switches_.empty(); }
  bool HasSwitch(const CefString& name) override { return switches_.count(name) > 0; }
  CefString GetSwitchValue(const CefString& name) override;
  void GetSwitches(SwitchMap& switches) override { switches = switches_; }
  void AppendSwitch(const CefString& name) override { AppendSwitchWithValue(name, CefString()); }
  void AppendSwitchWithValue(const CefString& name, const CefString& value) override;
  bool HasArguments() override { return !arguments_.empty(); }
  void GetArguments(ArgumentList& arguments) override { arguments = arguments_; }
  void AppendArgument(const CefString& argument) override;

  void setReadOnly() { readOnly_ = true; }

 private:
  void add(const std::string& word, bool& switchesEnded);

  bool readOnly_ = false;
  CefString program_;
  std::vector<CefString> words_;  // switches and arguments in their original form
  SwitchMap switches_;
  ArgumentList arguments_;
  IMPLEMENT_REFCOUNTING(CommandLine);
};

}  // namespace cef_qt
