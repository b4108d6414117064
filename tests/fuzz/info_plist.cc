// Any file as the bundle's Info.plist: it is read or refused with a reason, and every setting that
// is computed of it is a text.
#include <Poco/SharedPtr.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/settings/app_settings.h"
#include "app/settings/main_bundle.h"
#include "expect.h"

namespace fuzz {
namespace {

using zantrio::CAppSettings;

// A folder of this process, in memory where the system has such a place.
class Folder {
 public:
  Folder() { expect(mkdtemp(path_.data()) != nullptr); }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_ = std::string(std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : "/tmp") +
                      "/fuzz-plist-XXXXXX";
};

void readSettings(const Poco::SharedPtr<zantrio::CMainBundle>& bundle) {
  const CAppSettings settings(bundle, "/opt/Zantrio/bin/zantrio");
  constexpr std::array kGetters{
      &CAppSettings::getProductName,   &CAppSettings::getBundleName, &CAppSettings::getVersion,
      &CAppSettings::getAppBaseUrl,    &CAppSettings::getAppPath,    &CAppSettings::getAppUrl,
      &CAppSettings::getBridgeOrigins, &CAppSettings::getUserAgent,
  };
  for (const auto getter : kGetters) {
    std::string value;
    (settings.*getter)(value);
    expect(value.find('\0') == std::string::npos);
  }
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::Folder folder;
  std::ofstream(folder.path() + "/Info.plist", std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  const Poco::SharedPtr<zantrio::CMainBundle> bundle(new zantrio::CMainBundle(folder.path()));
  std::string value;
  fuzz::expect(bundle->error().empty() || !bundle->getString("AppBaseUrl", value));
  fuzz::readSettings(bundle);
  return 0;
}
