#include "platform/mac/app/application_delegate.h"

#include "browser/application_commands.h"
#include "platform/mac/base/system_text.h"

// Services still use this deprecated pasteboard type; activateIgnoringOtherApps: exists on all
// systems.
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
  const std::vector<std::string> paths = zantrio::toUtf8List(filenames);
  if (paths.empty()) {
    [application replyToOpenOrPrint:NSApplicationDelegateReplyFailure];
    return;
  }
  _commands->openFiles(paths);
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
  const std::vector<std::string> paths = zantrio::toUtf8List(filenames);
  if (paths.empty()) {
    *error = @"The names of the files cannot be read.";
    return;
  }
  [NSApp activateIgnoringOtherApps:YES];
  _commands->openFiles(paths);
}

@end
