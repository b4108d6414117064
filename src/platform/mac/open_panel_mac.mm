#include "platform/mac/open_panel_mac.h"

#import <AppKit/AppKit.h>

namespace zantrio {
namespace {

void setSelectionRules(NSOpenPanel* panel, OpenPanelKind kind) {
  const BOOL forFiles = kind == OpenPanelKind::kFiles ? YES : NO;
  [panel setAllowsMultipleSelection:forFiles];
  [panel setCanChooseFiles:forFiles];
  [panel setCanChooseDirectories:!forFiles];
  if (!forFiles) {
    [panel setCanCreateDirectories:YES];
  }
}

// Null when the user cancelled.
NSArray* runPanel(OpenPanelKind kind, const char* title) {
  constexpr NSInteger kOk = 1;
  NSOpenPanel* const panel = [NSOpenPanel openPanel];
  setSelectionRules(panel, kind);
  [panel setTitle:[NSString stringWithCString:title encoding:[NSString defaultCStringEncoding]]];
  [panel setDirectoryURL:nil];
  return [panel runModal] == kOk ? [panel URLs] : nil;
}

// The URLs' texts; null, to the caller the same as a cancel, when the system raised an exception.
NSArray* chosenIn(OpenPanelKind kind, const char* title) {
  @try {
    return [runPanel(kind, title) valueForKey:@"absoluteString"];
  } @catch (NSException*) {
    return nil;
  }
}

}  // namespace

bool runOpenPanel(OpenPanelKind kind, const std::string& title,
                  std::vector<std::string>& chosenUrls) {
  @autoreleasepool {
    NSArray* const chosen = chosenIn(kind, title.c_str());
    if ([chosen count] == 0) {
      return false;
    }
    chosenUrls.reserve(chosenUrls.size() + [chosen count]);
    for (NSString* url in chosen) {
      chosenUrls.emplace_back([url UTF8String]);
    }
    return true;
  }
}

}  // namespace zantrio
