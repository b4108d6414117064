#pragma once

#import <HockeySDK/HockeySDK.h>

#include <string>

namespace zantrio::mac_test {

// What was handed to the crash-reporting SDK.
struct CrashSdkFake {
  std::string raisesIn;  // the name of a message that raises an exception
  std::string identifier;
  bool submitsAutomatically = false;
  id<BITCrashManagerDelegate> delegate = nil;  // not owned, as in the SDK
};

CrashSdkFake& crashSdk();

}  // namespace zantrio::mac_test
