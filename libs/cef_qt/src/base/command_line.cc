#include <algorithm>
#include <cctype>

#include "base/command_line_impl.h"
#include "base/framework_state.h"

namespace cef_qt {
namespace {

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

}  // namespace

CefRefPtr<CefCommandLine> CommandLine::Copy() {
  CefRefPtr<CommandLine> copy = new CommandLine();
  copy->program_ = program_;
  copy->words_ = words_;
  copy->switches_ = switches_;
  copy->arguments_ = arguments_;
  return copy;
}

void CommandLine::InitFromArgv(int argc, const char* const* argv) {
  Reset();
  bool switchesEnded = false;
  for (int i = 0; i < argc; ++i) {
    if (i == 0) {
      program_ = argv[0];
    } else {
      add(argv[i], switchesEnded);
    }
  }
}

void CommandLine::Reset() {
  program_.clear();
  words_.clear();
  switches_.clear();
  arguments_.clear();
}

void CommandLine::add(const std::string& word, bool& switchesEnded) {
  const std::size_t dashes = word.rfind("--", 0) == 0 ? 2 : word.rfind('-', 0) == 0 ? 1 : 0;
  if (word == "--" && !switchesEnded) {
    switchesEnded = true;
    words_.emplace_back(word);
  } else if (switchesEnded || dashes == 0 || word.size() == dashes) {
    AppendArgument(word);
  } else {
    const std::size_t equals = word.find('=');
    const std::string name = lowerCase(word.substr(dashes, equals - dashes));
    switches_[name] = equals == std::string::npos ? "" : word.substr(equals + 1);
    words_.emplace_back(word);
  }
}

void CommandLine::GetArgv(std::vector<CefString>& argv) {
  argv.assign(1, program_);
  argv.insert(argv.end(), words_.begin(), words_.end());
}

CefString CommandLine::GetCommandLineString() {
  std::string line = program_;
  for (const CefString& word : words_) {
    const std::string text = word;
    const bool quoted = text.find_first_of(" \t\"") != std::string::npos;
    line += quoted ? " \"" + text + "\"" : " " + text;
  }
  return line;
}

void CommandLine::SetProgram(const CefString& program) {
  if (!readOnly_) {
    program_ = program;
  }
}

CefString CommandLine::GetSwitchValue(const CefString& name) {
  const auto found = switches_.find(name);
  return found == switches_.end() ? CefString() : found->second;
}

void CommandLine::AppendSwitchWithValue(const CefString& name, const CefString& value) {
  if (readOnly_) {
    return;
  }
  const std::string key = lowerCase(name);
  switches_[key] = value;
  words_.emplace_back("--" + key + (value.empty() ? "" : "=" + value.ToString()));
}

void CommandLine::AppendArgument(const CefString& argument) {
  if (!readOnly_) {
    words_.push_back(argument);
    arguments_.push_back(argument);
  }
}

}  // namespace cef_qt

CefRefPtr<CefCommandLine> CefCommandLine::CreateCommandLine() {
  return new cef_qt::CommandLine();
}

CefRefPtr<CefCommandLine> CefCommandLine::GetGlobalCommandLine() {
  return cef_qt::FrameworkState::commandLine();
}
