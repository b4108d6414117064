#include "platform/mac/app/application_delegate.h"

#include "src/platform/mac/fakes/appkit_fake.h"
#include "src/platform/mac/fakes/client_fake.h"
#include "src/platform/mac/fakes/system_fake.h"
#include "src/platform/mac/mac_fixture.h"

// A pasteboard of file names.
@interface FilenamesPasteboard : NSObject {
 @public
  id _filenames;
}
@end

@implementation FilenamesPasteboard
- (id)propertyListForType:(NSString*)type {
  return [type isEqual:NSFilenamesPboardType] ? _filenames : nil;
}
@end

namespace zantrio::mac_test {
namespace {

using Calls = std::vector<std::string>;

class ApplicationDelegateMac : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    delegate_ = [[[ZantrioApplicationDelegate alloc] initWithCommands:&commands_] autorelease];
  }

  // Returns the service's error.
  std::string send(id filenames) {
    FilenamesPasteboard* const pasteboard = [[[FilenamesPasteboard alloc] init] autorelease];
    pasteboard->_filenames = filenames;
    NSString* error = nil;
    [delegate_ sendFiles:(NSPasteboard*)pasteboard userData:nil error:&error];
    return textOf(error);
  }

  const ApplicationInPlace application_;
  RecordingCommands commands_;
  ZantrioApplicationDelegate* delegate_ = nil;
};

TEST_F(ApplicationDelegateMac, OpensFilesAndRepliesToTheSystem) {
  const std::string skipped = "log: An item of a list was left out, as it is no text in Unicode.";
  [delegate_ application:NSApp openFiles:@[ [HalfPair string], @"/b", @"/Zo\u00EB" ]];
  EXPECT_EQ(calls(), (Calls{skipped, "open /b", "open /Zo\u00EB", "replyToOpenOrPrint: 0"}));
  calls().clear();
  [delegate_ application:NSApp openFiles:@[ [HalfPair string] ]];
  EXPECT_EQ(calls(), (Calls{skipped, "replyToOpenOrPrint: 2"}));
}

TEST_F(ApplicationDelegateMac, TheServiceSendsTheFilesOnThePasteboard) {
  EXPECT_EQ(send(@[ @"/a", @"/b c" ]), "(null)");
  EXPECT_EQ(calls(), (Calls{"activateIgnoringOtherApps:", "open /a", "open /b c"}));
  calls().clear();
  for (id filenames : { (id) nil, (id) @[], (id) @"/a" }) {
    EXPECT_EQ(send(filenames), "There are no files to send.");
  }
  EXPECT_EQ(calls(), Calls());
  EXPECT_EQ(send(@[ [HalfPair string] ]), "The names of the files cannot be read.");
}

}  // namespace
}  // namespace zantrio::mac_test
