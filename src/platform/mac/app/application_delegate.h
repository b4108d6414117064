#pragma once

#import <AppKit/AppKit.h>

namespace zantrio {
class IApplicationCommands;
}

// Handles the system's requests to the application: files opened with it or dropped on its dock
// icon, menu commands, and the service for other programs. Forwards all of them to the commands.
// Thread: main.
@interface ZantrioApplicationDelegate : NSObject {
 @private
  zantrio::IApplicationCommands* _commands;
}

// `commands` is not owned and must outlive the delegate.
- (id)initWithCommands:(zantrio::IApplicationCommands*)commands;

// NSApplicationDelegate
- (void)application:(NSApplication*)application openFiles:(NSArray*)filenames;

// The menu's commands.
- (void)newMessage:(id)sender;
- (void)newShare:(id)sender;

// Called by ZantrioApplication to quit.
- (void)quit;

// The service "Send with Zantrio". Sets `error` if the pasteboard has no files.
- (void)sendFiles:(NSPasteboard*)pasteboard userData:(NSString*)userData error:(NSString**)error;

@end
