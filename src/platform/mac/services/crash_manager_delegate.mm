#include "platform/mac/services/crash_manager_delegate.h"

#include <string>

#include "app/settings/app_settings.h"
#include "services/crash/crash_log.h"

namespace {

// The log paths from the settings; empty without a home folder. The folder does not depend on the
// bundle.
zantrio::CrashLogFiles logFiles() {
  std::string folder;
  zantrio::CAppSettings(nullptr, "").getAppDataFolder(folder);
  return folder.empty() ? zantrio::CrashLogFiles() : zantrio::crashLogFilesIn(folder);
}

NSString* fromUtf8(const std::string& text) {
  return [[[NSString alloc] initWithBytes:text.data()
                                   length:text.size()
                                 encoding:NSUTF8StringEncoding] autorelease];
}

}  // namespace

@implementation CrashManagerDelegate

- (NSString*)applicationLogForCrashManager:(BITCrashManager*)crashManager {
  (void)crashManager;
  return fromUtf8(zantrio::collectCrashLog(logFiles()));
}

- (NSString*)logDataToString:(NSData*)data dataLengthMax:(NSUInteger)maximum {
  return fromUtf8(zantrio::logDataToText(
      std::string_view(static_cast<const char*>([data bytes]), [data length]), maximum));
}

- (NSString*)getAppLogPath {
  return fromUtf8(logFiles().app);
}

- (NSString*)getZtTransfersLogPath {
  return fromUtf8(logFiles().transfers);
}

- (NSString*)getZtTransfersSecondaryLogPath {
  return fromUtf8(logFiles().secondaryTransfers);
}

- (NSString*)getBrowserLogPath {
  return fromUtf8(logFiles().browser);
}

@end
