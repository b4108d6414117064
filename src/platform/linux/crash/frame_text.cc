#include "platform/linux/crash/frame_text.h"

#include <cxxabi.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "platform/linux/crash/signal_text.h"

namespace zantrio {
namespace {

std::string shortHexadecimal(Dwarf_Addr number) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(number));
  return text;
}

std::string readable(const char* symbol) {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> name(
      abi::__cxa_demangle(symbol, nullptr, nullptr, &status), std::free);
  return name ? name.get() : symbol;
}

std::string pathOf(Dwfl_Module* file) {
  const char* path = nullptr;
  const char* const name =
      dwfl_module_info(file, nullptr, nullptr, nullptr, nullptr, nullptr, &path, nullptr);
  return path ? path : name ? name : "?";
}

std::string buildIdOf(Dwfl_Module* file) {
  const unsigned char* bytes = nullptr;
  GElf_Addr where = 0;
  const int length = dwfl_module_build_id(file, &bytes, &where);
  std::string text;
  for (int i = 0; i < length; ++i) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", bytes[i]);
    text += digits;
  }
  return text.empty() ? "(no build id)" : text;
}

std::string functionAt(Dwfl_Module* file, Dwarf_Addr address) {
  GElf_Off offset = 0;
  GElf_Sym symbol;
  const char* const name =
      dwfl_module_addrinfo(file, address, &offset, &symbol, nullptr, nullptr, nullptr);
  return name ? readable(name) + " + " + shortHexadecimal(offset) : "?";
}

std::string lineAt(Dwfl_Module* file, Dwarf_Addr address) {
  Dwfl_Line* const line = dwfl_module_getsrc(file, address);
  int number = 0;
  const char* const source =
      line ? dwfl_lineinfo(line, nullptr, &number, nullptr, nullptr, nullptr) : nullptr;
  return source ? " at " + std::string(source) + ":" + std::to_string(number) : "";
}

}  // namespace

std::string FrameText::describe(const Frame& frame) {
  const Dwarf_Addr call = frame.isInterrupted ? frame.address : frame.address - 1;
  const auto [entry, isNew] = cache_.try_emplace(call);
  if (isNew) {
    Dwfl_Module* const file = dwfl_addrmodule(dwfl_, call);
    entry->second = file ? describeInFile(file, call) : "?";
  }
  return hexadecimal(frame.address) + " " + entry->second;
}

std::string FrameText::describeFiles() const {
  std::string text;
  for (const auto& [path, buildId] : buildIds_) {
    text += "  " + buildId + " " + path + "\n";
  }
  return text;
}

std::string FrameText::describeInFile(Dwfl_Module* file, Dwarf_Addr call) {
  // Loading the symbols also sets the file's load bias.
  const std::string function = functionAt(file, call);
  GElf_Addr bias = 0;
  dwfl_module_getelf(file, &bias);
  const std::string path = pathOf(file);
  buildIds_.try_emplace(path, buildIdOf(file));
  return function + lineAt(file, call) + " (" + path + " + " + shortHexadecimal(call - bias) + ")";
}

}  // namespace zantrio
