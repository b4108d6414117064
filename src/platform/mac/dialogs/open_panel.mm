#include "platform/mac/dialogs/open_panel.h"

#import <AppKit/AppKit.h>

#include "platform/mac/base/utf8_text.h"

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

// The URLs' texts; none, to the caller the same as a cancel, when the system raised an exception.
std::vector<std::string> chosenIn(OpenPanelKind kind, const char* title) {
  @try {
    return toUtf8List([runPanel(kind, title) valueForKey:@"absoluteString"]);
  } @catch (NSException*) {
    return {};
  }
}

}  // namespace

bool runOpenPanel(OpenPanelKind kind, const std::string& title,
                  std::vector<std::string>& chosenUrls) {
  @autoreleasepool {
    const std::vector<std::string> chosen = chosenIn(kind, title.c_str());
    chosenUrls.insert(chosenUrls.end(), chosen.begin(), chosen.end());
    return !chosen.empty();
  }
}

}  // namespace zantrio
