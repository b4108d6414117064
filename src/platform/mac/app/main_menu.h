#pragma once

#import <AppKit/AppKit.h>

namespace zantrio {

// Gives the application its menu bar. `commands` answers newMessage: and newShare:; what the other
// entries do is the system's.
void installMainMenu(NSApplication* application, id commands);

}  // namespace zantrio
