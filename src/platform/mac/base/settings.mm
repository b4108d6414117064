// Executable path, bundle and version of the system, as the settings declare them.
#include <CoreServices/CoreServices.h>
#include <mach-o/dyld.h>

#include <cstdint>
#include <filesystem>
#include <vector>

#include "app/settings/executable_path.h"
#include "app/settings/main_bundle.h"
#include "app/settings/os_version.h"
#include "platform/mac/base/system_text.h"

namespace zantrio {
namespace {

CfOwned<CFBundleRef> bundleOfRunningProgram() {
  CFBundleRef const bundle = CFBundleGetMainBundle();
  if (bundle != nullptr) {
    CFRetain(bundle);
  }
  return CfOwned<CFBundleRef>(bundle);
}

CfOwned<CFBundleRef> bundleIn(const std::string& folder) {
  const CfOwned<CFURLRef> url(CFURLCreateFromFileSystemRepresentation(
      nullptr, reinterpret_cast<const UInt8*>(folder.data()), static_cast<CFIndex>(folder.size()),
      true));
  return CfOwned<CFBundleRef>(url ? CFBundleCreate(nullptr, url.get()) : nullptr);
}

// Newer APIs return versions that depend on the SDK of the build.
bool ask(OSType selector, SInt32& number) {
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
  return Gestalt(selector, &number) == noErr;
#pragma clang diagnostic pop
}

}  // namespace

class CMainBundle::Impl {
 public:
  explicit Impl(CfOwned<CFBundleRef> bundle) : bundle_(std::move(bundle)) {
    if (!bundle_) {
      error_ = "The application's bundle cannot be read.";
    }
  }

  const std::string& error() const { return error_; }

  // Owned by the bundle; null if missing.
  CFTypeRef find(const std::string& key) const {
    const CfOwned<CFStringRef> name = createSystemString(key, kCFStringEncodingUTF8);
    return bundle_ && name ? CFBundleGetValueForInfoDictionaryKey(bundle_.get(), name.get())
                           : nullptr;
  }

 private:
  const CfOwned<CFBundleRef> bundle_;
  std::string error_;
};

CMainBundle::CMainBundle() : impl_(std::make_unique<Impl>(bundleOfRunningProgram())) {}

CMainBundle::CMainBundle(const std::string& folder)
    : impl_(std::make_unique<Impl>(bundleIn(folder))) {}

CMainBundle::~CMainBundle() = default;

const std::string& CMainBundle::error() const {
  return impl_->error();
}

bool CMainBundle::hasEntry(const std::string& key) const {
  return impl_->find(key) != nullptr;
}

bool CMainBundle::getString(const std::string& key, std::string& value) const {
  CFTypeRef const entry = impl_->find(key);
  return entry != nullptr && CFGetTypeID(entry) == CFStringGetTypeID() &&
         readSystemString(static_cast<CFStringRef>(entry), CFStringGetSystemEncoding(), value);
}

std::string resolveExecutablePath(const char* argv0) {
  std::uint32_t size = 0;
  _NSGetExecutablePath(nullptr, &size);  // returns the required size
  std::vector<char> path(size + 1, '\0');
  if (_NSGetExecutablePath(path.data(), &size) != 0) {
    return argv0;
  }
  std::error_code error;
  const std::filesystem::path resolved = std::filesystem::canonical(path.data(), error);
  return error ? std::string(argv0) : resolved.string();
}

// A separate application in the bundle; the framework starts variants of it for some kinds of
// processes.
std::string subProcessExecutablePath(const std::string& executablePath) {
  const std::filesystem::path contents =
      std::filesystem::path(executablePath).parent_path().parent_path();
  return (contents / "Frameworks/Zantrio Helper.app/Contents/MacOS/Zantrio Helper").string();
}

void readOsVersion(std::string& version) {
  SInt32 major = 0;
  SInt32 minor = 0;
  SInt32 bugFix = 0;
  if (ask(gestaltSystemVersionMajor, major) && ask(gestaltSystemVersionMinor, minor) &&
      ask(gestaltSystemVersionBugFix, bugFix)) {
    version = "Mac OS X " + std::to_string(major) + "." + std::to_string(minor) + "." +
              std::to_string(bugFix);
  }
}

}  // namespace zantrio
