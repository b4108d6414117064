#pragma once

#import <AppKit/AppKit.h>

namespace zantrio {
class IApplicationCommands;
}

// What the system asks of the application: files that are opened with it or dropped on its icon in
// the dock, its menu's own commands, and its service for other programs. Passes everything on to
// the commands. Thread: main.
@interface ZantrioApplicationDelegate : NSObject {
 @private
  zantrio::IApplicationCommands* _commands;
}

// `commands` are not owned and outlive the delegate.
- (id)initWithCommands:(zantrio::IApplicationCommands*)commands;

// NSApplicationDelegate
- (void)application:(NSApplication*)application openFiles:(NSArray*)filenames;

// The menu's commands.
- (void)newMessage:(id)sender;
- (void)newShare:(id)sender;

// Quitting, of which ZantrioApplication tells.
- (void)quit;

// The service "Send with Zantrio". Without files on the pasteboard `error` is set.
- (void)sendFiles:(NSPasteboard*)pasteboard userData:(NSString*)userData error:(NSString**)error;

@end
