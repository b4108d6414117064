#pragma once

#import <HockeySDK/HockeySDK.h>

// Provides the log tails that the crash-reporting SDK attaches to a report. Thread: any. A missing
// log counts as empty.
@interface CrashManagerDelegate : NSObject <BITCrashManagerDelegate>

- (NSString*)applicationLogForCrashManager:(BITCrashManager*)crashManager;

// The last bytes of `data`, at most `maximum`, as text.
- (NSString*)logDataToString:(NSData*)data dataLengthMax:(NSUInteger)maximum;

- (NSString*)getAppLogPath;
- (NSString*)getZtTransfersLogPath;
- (NSString*)getZtTransfersSecondaryLogPath;  // the transfer log before the current one
- (NSString*)getBrowserLogPath;

@end
