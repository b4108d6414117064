#include "osr/input/drag_session.h"

#include <gmock/gmock.h>

#include <cstring>
#include <functional>
#include <limits>

#include "src/osr/view/fake_osr_view.h"

namespace client::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DragSessionTest : public testing::Test {
 protected:
  std::vector<std::string> enteredPaths() const {
    std::vector<CefString> paths;
    view_.host->entered->GetFilePaths(paths);
    return {paths.begin(), paths.end()};
  }

  FakeOsrView view_;
  DragSession drags_{view_};
  const CefMouseEvent at_{3, 4, 2};
};

TEST_F(DragSessionTest, TellsTheBrowserOfADragFromOutsideStepByStep) {
  const std::string existing = "/";
  drags_.entered(at_, {"text", {existing, "/no/such/file"}}, DRAG_OPERATION_COPY);
  EXPECT_EQ(view_.host->entered->GetFragmentText().ToString(), "text");
  EXPECT_THAT(enteredPaths(), ElementsAre(existing));
  drags_.setCurrentDragOp(DRAG_OPERATION_LINK);
  EXPECT_EQ(drags_.moved(at_, DRAG_OPERATION_EVERY), DRAG_OPERATION_LINK);
  drags_.exited();
  EXPECT_TRUE(drags_.performed(at_));
  EXPECT_THAT(view_.host->lines,
              ElementsAre("enter 3,4 flags 2 allowed 1", "over 3,4 flags 2 allowed 4294967295",
                          "leave", "drop 3,4 flags 2"));
}

TEST_F(DragSessionTest, AnswersNoOperationOfADragBefore) {
  const auto chosenAfter = [this](const std::function<void()>& step) {
    drags_.setCurrentDragOp(DRAG_OPERATION_COPY);
    step();
    return drags_.currentDragOp();
  };
  EXPECT_EQ(chosenAfter([this] { drags_.entered(at_, {}, DRAG_OPERATION_COPY); }),
            DRAG_OPERATION_NONE);
  EXPECT_EQ(chosenAfter([this] { drags_.exited(); }), DRAG_OPERATION_NONE);
  EXPECT_EQ(chosenAfter([this] { drags_.performed(at_); }), DRAG_OPERATION_NONE);
}

TEST_F(DragSessionTest, UsesACopyOfItsOwnDragsData) {
  const CefRefPtr<CefDragData> own = CefDragData::Create();
  own->SetLinkURL("http://127.0.0.1/");
  drags_.begin(own, DRAG_OPERATION_MOVE);
  EXPECT_EQ(drags_.currentAllowedOps(), DRAG_OPERATION_MOVE);
  drags_.entered(at_, {"not this", {}}, DRAG_OPERATION_MOVE);
  EXPECT_EQ(view_.host->entered->GetLinkURL().ToString(), "http://127.0.0.1/");
  EXPECT_TRUE(view_.host->entered->GetFragmentText().empty());
  EXPECT_NE(view_.host->entered.get(), own.get());
}

TEST_F(DragSessionTest, ReportsTheEndOfItsDragAndForgetsIt) {
  drags_.begin(CefDragData::Create(), DRAG_OPERATION_EVERY);
  drags_.setCurrentDragOp(DRAG_OPERATION_COPY);
  drags_.endedAt({7.8, 8.9}, 17);  // copy and move together mean a copy
  EXPECT_THAT(view_.host->lines, ElementsAre("ended 7,8 with 1", "drag over"));
  EXPECT_FALSE(drags_.currentDragData());
  EXPECT_EQ(drags_.currentAllowedOps(), DRAG_OPERATION_NONE);
  EXPECT_EQ(drags_.currentDragOp(), DRAG_OPERATION_NONE);
  view_.host->lines.clear();
  for (const unsigned int operation : {0U, 1U, 2U, 16U, 19U}) {
    EXPECT_EQ(reportedOperation(operation), operation);
  }
}

TEST_F(DragSessionTest, SendsNothingWithoutABrowser) {
  view_.hasBrowser = false;
  drags_.entered(at_, {}, DRAG_OPERATION_COPY);
  drags_.moved(at_, DRAG_OPERATION_COPY);
  EXPECT_TRUE(drags_.performed(at_));
  drags_.endedAt({}, 1);
  EXPECT_THAT(view_.host->lines, IsEmpty());
}

TEST(DragKindsTest, OffersWhatTheDataHas) {
  const CefRefPtr<CefDragData> data = CefDragData::Create();
  EXPECT_FALSE(kindsOf(*data).link || kindsOf(*data).text || kindsOf(*data).fileContents);
  data->SetLinkURL("http://127.0.0.1/");
  data->SetFragmentText("text");
  EXPECT_TRUE(kindsOf(*data).link && kindsOf(*data).text);
  EXPECT_FALSE(fileContentsOf(*data));
}

class BytesWriteHandlerTest : public testing::Test {
 protected:
  std::string written() const {
    return {static_cast<const char*>(bytes_->data()), static_cast<std::size_t>(bytes_->size())};
  }
  std::size_t write(const char* text, std::size_t size, std::size_t count) {
    return bytes_->Write(text, size, count);
  }

  CefRefPtr<BytesWriteHandler> bytes_ = new BytesWriteHandler(10);
};

TEST_F(BytesWriteHandlerTest, CollectsWhatIsWrittenAndGrows) {
  EXPECT_EQ(write("abcdef", 2, 3), 3u);
  EXPECT_EQ(write("0123456789", 1, 10), 10u);
  EXPECT_EQ(write("", 1, 0), 0u);
  EXPECT_EQ(bytes_->Tell(), 16);
  EXPECT_EQ(written(), "abcdef0123456789");
  EXPECT_EQ(bytes_->Flush(), 0);
  EXPECT_FALSE(bytes_->MayBlock());
  std::string large(1000000, 'x');
  EXPECT_EQ(write(large.c_str(), large.size(), 1), 1u);
  EXPECT_EQ(written(), "abcdef0123456789" + large);
}

TEST_F(BytesWriteHandlerTest, GrowsByItsStepWhenTheEndIsReached) {
  // The capacity shows in where the end is: 10, then 20 as soon as it is full.
  EXPECT_EQ(write("123456789", 1, 9), 9u);
  EXPECT_EQ(bytes_->Seek(0, SEEK_END), 0);
  EXPECT_EQ(bytes_->Tell(), 10);
  EXPECT_EQ(bytes_->Seek(9, SEEK_SET), 0);
  EXPECT_EQ(write("0", 1, 1), 1u);
  EXPECT_EQ(bytes_->Seek(0, SEEK_END), 0);
  EXPECT_EQ(bytes_->Tell(), 20);
}

TEST_F(BytesWriteHandlerTest, ChecksPositionsAgainstTheCapacity) {
  EXPECT_EQ(bytes_->Seek(10, SEEK_SET), 0);
  EXPECT_EQ(bytes_->Seek(11, SEEK_SET), -1);
  EXPECT_EQ(bytes_->Seek(-1, SEEK_SET), -1);
  EXPECT_EQ(bytes_->Tell(), 10);
  EXPECT_EQ(bytes_->Seek(-4, SEEK_CUR), 0);
  EXPECT_EQ(bytes_->Tell(), 6);
  EXPECT_EQ(bytes_->Seek(5, SEEK_CUR), -1);
  EXPECT_EQ(bytes_->Seek(-7, SEEK_CUR), -1);
  EXPECT_EQ(bytes_->Seek(-3, SEEK_END), 0);
  EXPECT_EQ(bytes_->Tell(), 7);
  EXPECT_EQ(bytes_->Seek(3, SEEK_END), 0);  // either sign counts from the end
  EXPECT_EQ(bytes_->Tell(), 7);
  EXPECT_EQ(bytes_->Seek(-11, SEEK_END), -1);
  EXPECT_EQ(bytes_->Seek(std::numeric_limits<int64_t>::min(), SEEK_END), -1);
  EXPECT_EQ(bytes_->Seek(std::numeric_limits<int64_t>::max(), SEEK_CUR), -1);
  EXPECT_EQ(bytes_->Seek(0, 3), -1);
  EXPECT_EQ(bytes_->Tell(), 7);
}

TEST_F(BytesWriteHandlerTest, WritesNothingThatMemoryCannotHold) {
  write("abc", 1, 3);
  const std::size_t most = std::numeric_limits<std::size_t>::max();
  EXPECT_EQ(write("abc", most / 4, 1), 0u);
  EXPECT_EQ(write("abc", most, most), 0u);
  EXPECT_EQ(written(), "abc");
  const CefRefPtr<BytesWriteHandler> tooLarge(new BytesWriteHandler(most / 4));
  EXPECT_EQ(tooLarge->Write("abc", 1, 3), 0u);
  const CefRefPtr<BytesWriteHandler> empty(new BytesWriteHandler(0));
  EXPECT_EQ(empty->Write("", 1, 0), 0u);
  EXPECT_EQ(empty->Write("abc", 1, 3), 3u);
  EXPECT_EQ(std::memcmp(empty->data(), "abc", 3), 0);
}

}  // namespace
}  // namespace client::test
