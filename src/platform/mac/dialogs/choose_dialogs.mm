#include "platform/mac/dialogs/choose_dialogs.h"

#import <AppKit/AppKit.h>

#include <new>

#include "platform/mac/base/system_text.h"

namespace zantrio {
namespace {

enum class OpenPanelKind { kFiles, kFolder };

void setSelectionRules(NSOpenPanel* panel, OpenPanelKind kind) {
  const BOOL forFiles = kind == OpenPanelKind::kFiles ? YES : NO;
  [panel setAllowsMultipleSelection:forFiles];
  [panel setCanChooseFiles:forFiles];
  [panel setCanChooseDirectories:!forFiles];
  if (!forFiles) {
    [panel setCanCreateDirectories:YES];
  }
}

// Nil if the user cancelled.
NSArray* runPanel(OpenPanelKind kind, const char* title) {
  constexpr NSInteger kOk = 1;
  NSOpenPanel* const panel = [NSOpenPanel openPanel];
  setSelectionRules(panel, kind);
  [panel setTitle:[NSString stringWithCString:title encoding:[NSString defaultCStringEncoding]]];
  [panel setDirectoryURL:nil];
  return [panel runModal] == kOk ? [panel URLs] : nil;
}

// Empty if cancelled or if the system raised an exception.
std::vector<std::string> chosenIn(OpenPanelKind kind, const char* title) {
  @try {
    return toUtf8List([runPanel(kind, title) valueForKey:@"absoluteString"]);
  } @catch (NSException*) {
    return {};
  }
}

// Runs the open panel modally (see IFileChooseDialog::show). The title is decoded in the default
// narrow encoding; the panel opens in its last folder.
bool runOpenPanel(OpenPanelKind kind, const std::string& title,
                  std::vector<std::string>& chosenUrls) {
  @autoreleasepool {
    const std::vector<std::string> chosen = chosenIn(kind, title.c_str());
    chosenUrls.insert(chosenUrls.end(), chosen.begin(), chosen.end());
    return !chosen.empty();
  }
}

}  // namespace

bool CFileChooseDialogMac::show(std::vector<std::string>& chosenUrls) {
  return runOpenPanel(OpenPanelKind::kFiles, title(), chosenUrls);
}

std::unique_ptr<IFileChooseDialog> createFileChooseDialog() {
  return std::unique_ptr<IFileChooseDialog>(new (std::nothrow) CFileChooseDialogMac);
}

bool CFolderChooseDialogMac::show(std::vector<std::string>& chosenUrls) {
  return runOpenPanel(OpenPanelKind::kFolder, title(), chosenUrls);
}

std::unique_ptr<IFolderChooseDialog> createFolderChooseDialog() {
  return std::unique_ptr<IFolderChooseDialog>(new (std::nothrow) CFolderChooseDialogMac);
}

}  // namespace zantrio
