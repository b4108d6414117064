#include <filesystem>

#include "base/drag_data_impl.h"
#include "src/platform/mac/fakes/pasteboard_fake.h"
#include "src/platform/mac/fakes/system_fake.h"
#include "src/platform/mac/view/view_fixture.h"
#include "support/temporary_folder.h"

#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace zantrio::mac_test {
namespace {

class ClientOpenGLViewDragsMac : public ViewTest {
 protected:
  void TearDown() override {
    ViewTest::TearDown();
    EXPECT_EQ([[MemoryPasteboard drag] owner], nil) << "promises of a destroyed view";
    [[MemoryPasteboard drag] clear];
  }

  static NSPasteboard* pasteboard() { return [MemoryPasteboard system]; }
  static void raise(bool raises) { [[MemoryPasteboard drag] setRaises:raises]; }

  static Lines types() {
    Lines names;
    for (NSString* type in [pasteboard() types]) {
      names.push_back(textOf(type));
    }
    return names;
  }

  // A link, text and a file.
  static CefRefPtr<CefDragData> everything() {
    cef_qt::DragContents contents;
    contents.linkUrl = "http://127.0.0.1/a";
    contents.linkTitle = u"Zo\u00EB";
    contents.fragmentText = u"text \u20AC";
    contents.contentsName = "picture.png";
    contents.contents = "bytes";
    return new cef_qt::DragData(contents, true);
  }

  bool start(CefRefPtr<CefDragData> data) {
    return handler()->StartDragging(browser_, data, DRAG_OPERATION_LINK, 10, 20);
  }

  // Runs the application's loop until the drag begins.
  static void runDrag() {
    NSDate* const limit = [NSDate dateWithTimeIntervalSinceNow:10];
    while (calls().empty() && [limit timeIntervalSinceNow] > 0) {
      [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                               beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.01]];
    }
  }

  void endWith(NSDragOperation operation) {
    const NSRect end = [window_ convertRectToScreen:NSMakeRect(30, 40, 0, 0)];
    [view_ draggingSession:nil endedAtPoint:end.origin operation:operation];
  }

  DragOver* over(NSDragOperation operations = NSDragOperationEvery) {
    DragOver* const drag = [[[DragOver alloc] init] autorelease];
    drag->_location = NSMakePoint(10, 80);
    drag->_operations = operations;
    return drag;
  }

  const std::unique_ptr<ClassMethodSwap> pasteboardInPlace_ = putDragPasteboardInPlace();
  const std::unique_ptr<InstanceMethodSwap> dragInPlace_ = putImageDragInPlace();
};

TEST_F(ClientOpenGLViewDragsMac, OffersWhatThePageLetsDragAndProvidesItWhenAsked) {
  fakeSystem().mimeTypes = {{"png", "image/png"}};
  fakeSystem().typeIdentifiers = {{"image/png", "public.png"}};
  ASSERT_TRUE(start(everything()));
  EXPECT_EQ(types(),
            (Lines{"org.CEF.drag-dummy-type", textOf(NSURLPboardType), "public.url-name",
                   "public.png", textOf(NSFilesPromisePboardType), textOf(NSStringPboardType)}));
  EXPECT_EQ([[MemoryPasteboard drag] owner], view_);
  EXPECT_EQ(textOf([pasteboard() stringForType:NSURLPboardType]), "http://127.0.0.1/a");
  EXPECT_EQ(textOf([pasteboard() stringForType:@"public.url-name"]), "Zo\u00EB");
  EXPECT_EQ(textOf([pasteboard() stringForType:NSStringPboardType]), "text \u20AC");
  EXPECT_TRUE([[pasteboard() dataForType:@"public.png"] isEqual:[NSData dataWithBytes:"bytes"
                                                                               length:5]]);
  EXPECT_TRUE(
      [[pasteboard() propertyListForType:NSFilesPromisePboardType] isEqual:@[ @"public.png" ]]);
  EXPECT_EQ([[pasteboard() dataForType:@"org.CEF.drag-dummy-type"] length], 0u);
  cef_qt::DragContents unknown;
  unknown.contentsName = "noExtension";
  unknown.contents = "bytes";
  ASSERT_TRUE(start(new cef_qt::DragData(unknown, true)));
  EXPECT_EQ(types(),
            (Lines{"org.CEF.drag-dummy-type", "public.data", textOf(NSFilesPromisePboardType)}));
}

TEST_F(ClientOpenGLViewDragsMac, RunsTheDragFromTheApplicationsLoopAndReportsItsEnd) {
  ASSERT_TRUE(start(everything()));
  EXPECT_EQ(calls(), Lines{});
  runDrag();
  EXPECT_EQ(calls(), Lines{"drag image"});
  EXPECT_TRUE(NSEqualPoints(appKit().dragStart, NSMakePoint(10, 80)));
  EXPECT_TRUE(NSEqualPoints(appKit().dragPress, NSMakePoint(10, 80)));
  EXPECT_EQ(appKit().dragPasteboard, pasteboard());
  const auto allowed = [this] {
    return [view_ draggingSession:nil
        sourceOperationMaskForDraggingContext:NSDraggingContextWithinApplication];
  };
  EXPECT_EQ(allowed(), NSUInteger{NSDragOperationLink});
  endWith(17);
  EXPECT_EQ(sent(), (Lines{"ended 30,60 with 1", "drag over"}));
  EXPECT_EQ([pasteboard() stringForType:NSStringPboardType], nil);
  EXPECT_EQ(allowed(), 0u);
}

TEST_F(ClientOpenGLViewDragsMac, DoesNotStartADragThatTheSystemRefuses) {
  raise(true);
  EXPECT_FALSE(start(everything()));
  raise(false);
  ASSERT_EQ(calls().size(), 1u);
  EXPECT_TRUE(calls()[0].starts_with("log: Exception of the system caught: "));
  EXPECT_FALSE(start(nullptr));
  EXPECT_EQ(sent(), Lines{});
}

TEST_F(ClientOpenGLViewDragsMac, ReportsADragThatCannotRunAsEnded) {
  appKit().dragRaises = true;
  ASSERT_TRUE(start(everything()));
  runDrag();
  EXPECT_EQ(sent(), (Lines{"ended 10,20 with 0", "drag over"}));
}

TEST_F(ClientOpenGLViewDragsMac, ForwardsADragIntoTheView) {
  [pasteboard() declareTypes:@[ NSStringPboardType, NSFilenamesPboardType ] owner:nil];
  [pasteboard() setString:@"text" forType:NSStringPboardType];
  [pasteboard() setPropertyList:@[ @"/", @"/no/such/file" ] forType:NSFilenamesPboardType];
  [view_ draggingEntered:over(NSDragOperationCopy)];
  handler()->UpdateDragCursor(browser_, DRAG_OPERATION_LINK);
  EXPECT_EQ([view_ draggingUpdated : over()], NSUInteger { NSDragOperationLink });
  [view_ draggingExited:over()];
  EXPECT_TRUE([view_ prepareForDragOperation:over()]);
  EXPECT_TRUE([view_ performDragOperation:over()]);
  EXPECT_EQ(sent(), (Lines{"enter 10,20 flags 0 allowed 1", "over 10,20 flags 0 allowed 4294967295",
                           "leave", "drop 10,20 flags 0"}));
  EXPECT_EQ(host_->entered->GetFragmentText().ToString(), "text");
  std::vector<CefString> paths;
  host_->entered->GetFilePaths(paths);
  EXPECT_EQ(Lines(paths.begin(), paths.end()), Lines{"/"});
}

TEST_F(ClientOpenGLViewDragsMac, SkipsUnreadableItemsOfADragIntoTheView) {
  [pasteboard() declareTypes:@[ NSFilenamesPboardType ] owner:nil];
  [pasteboard() setPropertyList:@"not a list" forType:NSFilenamesPboardType];
  [view_ draggingEntered:over()];
  EXPECT_FALSE(host_->entered->IsFile());

  NSString* const broken = [HalfPair string];
  [pasteboard() declareTypes:@[ NSStringPboardType, NSFilenamesPboardType ] owner:nil];
  [pasteboard() setString:broken forType:NSStringPboardType];
  [pasteboard() setPropertyList:@[ broken, @1, @"/" ] forType:NSFilenamesPboardType];
  [view_ draggingEntered:over()];
  EXPECT_TRUE(host_->entered->GetFragmentText().empty());
  std::vector<CefString> paths;
  host_->entered->GetFilePaths(paths);
  EXPECT_EQ(Lines(paths.begin(), paths.end()), Lines{"/"});
  EXPECT_EQ(calls().size(), 2u) << "one log line per skipped name";

  raise(true);
  [view_ draggingEntered:over()];
  EXPECT_EQ(sent().size(), 3u) << "the browser was not notified";
}

TEST_F(ClientOpenGLViewDragsMac, ItsOwnDragKeepsItsDataWithoutThePasteboard) {
  ASSERT_TRUE(start(everything()));
  raise(true);
  [view_ draggingEntered:over()];
  raise(false);
  EXPECT_EQ(calls(), Lines{});
  EXPECT_EQ(host_->entered->GetLinkURL().ToString(), "http://127.0.0.1/a");
}

TEST_F(ClientOpenGLViewDragsMac, WritesAPromisedFileWhereItWasDropped) {
  const zantrio::test::TemporaryFolder folder;
  NSURL* const dropped =
      [NSURL fileURLWithPath:[NSString stringWithUTF8String:folder.path().c_str()]];
  EXPECT_EQ([[view_ namesOfPromisedFilesDroppedAtDestination:dropped] count], 0u);
  ASSERT_TRUE(start(everything()));
  NSArray* const names = [view_ namesOfPromisedFilesDroppedAtDestination:dropped];
  EXPECT_TRUE([names isEqual:@[ @"picture.png" ]]);
  EXPECT_EQ(std::filesystem::file_size(folder.path() + "/picture.png"), 5u);
}

}  // namespace
}  // namespace zantrio::mac_test
