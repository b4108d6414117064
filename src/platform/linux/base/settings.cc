// Executable path, bundle and version of the system, as the settings declare them.
#include <plist/plist.h>
#include <sys/utsname.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "app/settings/executable_path.h"
#include "app/settings/main_bundle.h"
#include "app/settings/os_version.h"

namespace zantrio {
namespace {

struct PlistDeleter {
  void operator()(void* node) const { plist_free(node); }
};
using PlistPtr = std::unique_ptr<void, PlistDeleter>;

// The program's file is Zantrio/bin/zantrio; the bundle is the folder above.
std::string folderOfRunningProgram() {
  const std::filesystem::path executable = resolveExecutablePath("");
  return executable.parent_path().parent_path().string();
}

PlistPtr parse(const std::string& text) {
  plist_t root = nullptr;
  plist_from_memory(text.data(), static_cast<std::uint32_t>(text.size()), &root);
  return PlistPtr(root);
}

}  // namespace

class CMainBundle::Impl {
 public:
  explicit Impl(const std::string& folder) { load(folder + "/Info.plist"); }

  const std::string& error() const { return error_; }

  plist_t find(const std::string& key) const {
    return dictionary_ ? plist_dict_get_item(dictionary_.get(), key.c_str()) : nullptr;
  }

 private:
  void load(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
      error_ = "The application's information file " + path + " cannot be opened.";
      return;
    }
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    PlistPtr root = parse(text);
    if (!root || plist_get_node_type(root.get()) != PLIST_DICT) {
      error_ = "The application's information file " + path + " is not a property list dictionary.";
      return;
    }
    dictionary_ = std::move(root);
  }

  std::string error_;
  PlistPtr dictionary_;
};

CMainBundle::CMainBundle() : CMainBundle(folderOfRunningProgram()) {}

CMainBundle::CMainBundle(const std::string& folder) : impl_(std::make_unique<Impl>(folder)) {}

CMainBundle::~CMainBundle() = default;

const std::string& CMainBundle::error() const {
  return impl_->error();
}

bool CMainBundle::hasEntry(const std::string& key) const {
  return impl_->find(key) != nullptr;
}

bool CMainBundle::getString(const std::string& key, std::string& value) const {
  plist_t node = impl_->find(key);
  if (node == nullptr || plist_get_node_type(node) != PLIST_STRING) {
    return false;
  }
  std::uint64_t length = 0;
  const char* const text = plist_get_string_ptr(node, &length);
  // plist_get_string_val() ends the program for a text that contains a NUL.
  if (text == nullptr || std::strlen(text) != length) {
    return false;
  }
  value = text;
  return true;
}

std::string resolveExecutablePath(const char* argv0) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::string(argv0) : path.string();
}

// Beside the program's own file.
std::string subProcessExecutablePath(const std::string& executablePath) {
  return std::filesystem::path(executablePath).replace_filename("zantrio-process").string();
}

void readOsVersion(std::string& version) {
  utsname names{};
  if (uname(&names) != 0) {
    return;
  }
  // A release looks like "6.1.0-18-amd64"; missing numbers count as 0.
  unsigned major = 0;
  unsigned minor = 0;
  unsigned bugFix = 0;
  if (std::sscanf(names.release, "%u.%u.%u", &major, &minor, &bugFix) < 1) {
    return;
  }
  version = std::string(names.sysname) + " " + std::to_string(major) + "." + std::to_string(minor) +
            "." + std::to_string(bugFix);
}

}  // namespace zantrio
