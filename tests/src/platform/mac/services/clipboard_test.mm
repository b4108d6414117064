#include "services/clipboard.h"

#include "src/platform/mac/fakes/calls.h"
#include "src/platform/mac/fakes/system_services_fake.h"
#include "src/platform/mac/mac_fixture.h"

namespace zantrio::mac_test {
namespace {

using ClipboardMac = MacTest;
using Calls = std::vector<std::string>;

TEST_F(ClipboardMac, PutsTheBytesUnchangedAsTheOnlyItem) {
  const std::string text("Zo\xC3\xAB \xFF\0 end", 11);
  EXPECT_TRUE(createClipboard()->copyText(text));

  const SystemServicesRecord& system = systemServices();
  EXPECT_EQ(system.pasteboardName, "com.apple.pasteboard.clipboard");
  EXPECT_EQ(calls(),
            (Calls{"PasteboardClear", "PasteboardSynchronize", "PasteboardPutItemFlavor"}));
  EXPECT_EQ(system.item, 1U);
  EXPECT_EQ(system.flavor, "public.utf8-plain-text");
  EXPECT_EQ(system.flavorFlags, kPasteboardFlavorNoFlags);
  EXPECT_EQ(system.data, text);
}

TEST_F(ClipboardMac, FailsWhenThePasteboardIsMissingOrRejectsTheText) {
  systemServices().pasteboardPut = -25130;
  EXPECT_FALSE(createClipboard()->copyText("text"));
  calls().clear();
  systemServices().pasteboardCreation = -25130;
  EXPECT_FALSE(createClipboard()->copyText("text"));
  EXPECT_EQ(calls(), Calls{});
}

}  // namespace
}  // namespace zantrio::mac_test
