#include "app/settings/os_version.h"

#include <sys/utsname.h>

#include <cstdio>

namespace zantrio {

void readOsVersion(std::string& version) {
  utsname names{};
  if (uname(&names) != 0) {
    return;
  }
  // A release looks like "6.1.0-18-amd64"; a number that is not there counts as 0.
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
