#include "mac/gnustep_home.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace zantrio::mac_test {

// GNUstep takes the home folder from the user database alone, and these folders relative to it.
GnustepHome::GnustepHome() {
  const passwd* const user = getpwuid(getuid());
  const std::string library =
      std::filesystem::relative(folder_.path(), user != nullptr ? user->pw_dir : "/").string();
  std::ostringstream settings;
  settings << std::ifstream("/etc/GNUstep/GNUstep.conf").rdbuf();
  settings << "\nGNUSTEP_USER_DIR_LIBRARY=" << library
           << "/Library\nGNUSTEP_USER_DEFAULTS_DIR=" << library << "/Defaults\n";
  setenv("GNUSTEP_CONFIG_FILE", folder_.makeFile("GNUstep.conf", settings.str()).c_str(), 1);
}

}  // namespace zantrio::mac_test
