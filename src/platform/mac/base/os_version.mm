#include "app/settings/os_version.h"

#include <CoreServices/CoreServices.h>

namespace zantrio {
namespace {

// The system has newer ways, whose numbers depend on what the program was built for.
bool ask(OSType selector, SInt32& number) {
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
  return Gestalt(selector, &number) == noErr;
#pragma clang diagnostic pop
}

}  // namespace

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
