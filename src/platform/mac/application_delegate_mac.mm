#include "platform/mac/application_delegate_mac.h"

#include "browser/application_commands.h"
#include "platform/mac/utf8_text_mac.h"

// The pasteboard type is the one that services are offered files in; the way to come to the front
// is the one that all systems have.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

@implementation ZantrioApplicationDelegate

- (id)initWithCommands:(zantrio::IApplicationCommands*)commands {
  self = [super init];
  if (self != nil) {
    _commands = commands;
  }
  return self;
}

- (void)application:(NSApplication*)application openFiles:(NSArray*)filenames {
  _commands->openFiles(zantrio::toUtf8List(filenames));
  [application replyToOpenOrPrint:NSApplicationDelegateReplySuccess];
}

- (void)newMessage:(id)sender {
  (void)sender;
  _commands->newMessage();
}

- (void)newShare:(id)sender {
  (void)sender;
  _commands->newShare();
}

- (void)quit {
  _commands->quit();
}

- (void)sendFiles:(NSPasteboard*)pasteboard userData:(NSString*)userData error:(NSString**)error {
  (void)userData;
  NSArray* const filenames = [pasteboard propertyListForType:NSFilenamesPboardType];
  if (![filenames isKindOfClass:[NSArray class]] || [filenames count] == 0) {
    *error = @"There are no files to send.";
    return;
  }
  [NSApp activateIgnoringOtherApps:YES];
  _commands->openFiles(zantrio::toUtf8List(filenames));
}

@end
