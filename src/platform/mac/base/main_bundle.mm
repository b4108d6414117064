#include "app/settings/main_bundle.h"

#include "platform/mac/base/system_string.h"

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

}  // namespace

class CMainBundle::Impl {
 public:
  explicit Impl(CfOwned<CFBundleRef> bundle) : bundle_(std::move(bundle)) {
    if (!bundle_) {
      error_ = "The application's bundle cannot be read.";
    }
  }

  const std::string& error() const { return error_; }

  // Belongs to the bundle; null when there is none.
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

}  // namespace zantrio
