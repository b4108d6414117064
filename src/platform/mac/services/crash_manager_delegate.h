#pragma once

#import <HockeySDK/HockeySDK.h>

// Tells the crash-reporting SDK what to attach to a report: the ends of the application's logs.
// Thread: any. A log that is missing counts as empty.
@interface CrashManagerDelegate : NSObject <BITCrashManagerDelegate>

- (NSString*)applicationLogForCrashManager:(BITCrashManager*)crashManager;

// The last bytes of `data`, at most `maximum`, as text.
- (NSString*)logDataToString:(NSData*)data dataLengthMax:(NSUInteger)maximum;

- (NSString*)getAppLogPath;
- (NSString*)getZtTransfersLogPath;
- (NSString*)getZtTransfersSecondaryLogPath;  // the transfer log before the current one
- (NSString*)getBrowserLogPath;

@end
