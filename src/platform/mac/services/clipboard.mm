#include "platform/mac/services/clipboard.h"

#include <new>

namespace zantrio {
namespace {

CfOwned<PasteboardRef> openClipboard() {
  PasteboardRef pasteboard = nullptr;
  const OSStatus status = PasteboardCreate(kPasteboardClipboard, &pasteboard);
  return CfOwned<PasteboardRef>(status == noErr ? pasteboard : nullptr);
}

}  // namespace

CClipboardMac::CClipboardMac() : pasteboard_(openClipboard()) {}

bool CClipboardMac::copyText(const std::string& text) {
  if (!pasteboard_) {
    return false;
  }
  const auto item = reinterpret_cast<PasteboardItemID>(1);
  PasteboardClear(pasteboard_.get());
  PasteboardSynchronize(pasteboard_.get());
  const CfOwned<CFDataRef> bytes(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                              static_cast<CFIndex>(text.size())));
  return PasteboardPutItemFlavor(pasteboard_.get(), item, CFSTR("public.utf8-plain-text"),
                                 bytes.get(), kPasteboardFlavorNoFlags) == noErr;
}

std::unique_ptr<IClipboard> createClipboard() {
  return std::unique_ptr<IClipboard>(new (std::nothrow) CClipboardMac);
}

}  // namespace zantrio
