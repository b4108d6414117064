// The part of the crash-reporting SDK that the client uses, declared with the SDK's names.
#pragma once

#import <Foundation/Foundation.h>

@class BITCrashManager;

@protocol BITCrashManagerDelegate <NSObject>
@optional
- (NSString*)applicationLogForCrashManager:(BITCrashManager*)crashManager;
@end

@interface BITCrashManager : NSObject
@property(nonatomic, assign, getter=isAutoSubmitCrashReport) BOOL autoSubmitCrashReport;
@property(nonatomic, assign) id<BITCrashManagerDelegate> delegate;
@end

@interface BITHockeyManager : NSObject
@property(nonatomic, readonly) BITCrashManager* crashManager;
+ (BITHockeyManager*)sharedHockeyManager;
- (void)configureWithIdentifier:(NSString*)appIdentifier;
- (void)startManager;
@end
