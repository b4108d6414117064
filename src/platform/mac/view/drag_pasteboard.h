// Data of drags out of and into the view on the system's pasteboard.
#pragma once

#import <AppKit/AppKit.h>

#include "osr/input/drag_out.h"
#include "osr/input/drag_session.h"

namespace client {

// Marks every drag out of a page, so that such a view accepts it.
extern NSString* const kDragDummyPboardType;

// A drag into the view: its text and file names.
DroppedItems droppedItemsOf(NSPasteboard* pasteboard);

// The uniform type identifier of the dragged virtual file, from its name's MIME type.
NSString* fileTypeOf(CefDragData& data);

// Declares the data's types, which `owner` provides on request. `fileType`: the type of promised
// contents; nil if there are none.
void declareKinds(NSPasteboard* pasteboard, CefDragData& data, NSString* fileType, id owner);

// Writes the data of one declared type.
void provideKind(NSPasteboard* pasteboard, NSString* type, CefDragData& data, NSString* fileType);

}  // namespace client
