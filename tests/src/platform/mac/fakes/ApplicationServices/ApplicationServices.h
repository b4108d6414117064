// The part of ApplicationServices that the client uses, declared with the system's names.
#pragma once

#include <CoreServices/CoreServices.h>

extern "C" {

typedef struct OpaquePasteboardRef* PasteboardRef;
typedef void* PasteboardItemID;
typedef UInt32 PasteboardSyncFlags;
typedef UInt32 PasteboardFlavorFlags;
enum : PasteboardFlavorFlags { kPasteboardFlavorNoFlags = 0 };
#define kPasteboardClipboard CFSTR("com.apple.pasteboard.clipboard")

OSStatus PasteboardCreate(CFStringRef name, PasteboardRef* pasteboard);
OSStatus PasteboardClear(PasteboardRef pasteboard);
PasteboardSyncFlags PasteboardSynchronize(PasteboardRef pasteboard);
OSStatus PasteboardPutItemFlavor(PasteboardRef pasteboard, PasteboardItemID item,
                                 CFStringRef flavorType, CFDataRef flavorData,
                                 PasteboardFlavorFlags flavorFlags);

}  // extern "C"
