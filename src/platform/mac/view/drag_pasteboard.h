// What drags carry, on the system's pasteboard.
#pragma once

#import <AppKit/AppKit.h>

#include "osr/input/drag_contents.h"

namespace client {

// On the pasteboard of every drag that begins in a page, so that such a view takes it.
extern NSString* const kDragDummyPboardType;

// Strings and lists of file names.
DroppedItems droppedItemsOf(NSPasteboard* pasteboard);

// The uniform type identifier of the file that the data would make, by the MIME type of its name.
NSString* fileTypeOf(CefDragData& data);

// Declares the data's kinds, which `owner` provides when they are asked for. `fileType` is that of
// promised contents; nil when there are none.
void declareKinds(NSPasteboard* pasteboard, CefDragData& data, NSString* fileType, id owner);

// Puts what the data has of a declared kind on the pasteboard.
void provideKind(NSPasteboard* pasteboard, NSString* type, CefDragData& data, NSString* fileType);

}  // namespace client
