#include "osr/input/drag_out.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>

#include "src/fakes/fake_browser.h"
#include "support/temporary_folder.h"

namespace client::test {
namespace {

TEST(DragKindsTest, OffersTheKindsOfTheDataAndReportsCopyAndMoveTogetherAsACopy) {
  const CefRefPtr<CefDragData> data = CefDragData::Create();
  EXPECT_FALSE(kindsOf(*data).link || kindsOf(*data).text || kindsOf(*data).fileContents);
  data->SetLinkURL("http://127.0.0.1/");
  data->SetFragmentText("text");
  EXPECT_TRUE(kindsOf(*data).link && kindsOf(*data).text);
  EXPECT_FALSE(fileContentsOf(*data));
  EXPECT_EQ(reportedOperation(17), DRAG_OPERATION_COPY);
  for (const unsigned int operation : {0U, 1U, 2U, 16U, 19U}) {
    EXPECT_EQ(reportedOperation(operation), operation);
  }
}

class BytesWriteHandlerTest : public testing::Test {
 protected:
  std::string written() const {
    return {static_cast<const char*>(bytes_->data()), static_cast<std::size_t>(bytes_->size())};
  }

  CefRefPtr<BytesWriteHandler> bytes_ = new BytesWriteHandler(10);
};

TEST_F(BytesWriteHandlerTest, CollectsWritesAndGrowsByItsStep) {
  EXPECT_EQ(bytes_->Write("123456789", 3, 3), 3u);
  EXPECT_EQ(bytes_->Seek(0, SEEK_END), 0);  // moves to the capacity
  EXPECT_EQ(bytes_->Tell(), 10);
  EXPECT_EQ(bytes_->Seek(9, SEEK_SET), 0);
  EXPECT_EQ(bytes_->Write("0", 1, 1), 1u);
  EXPECT_EQ(written(), "1234567890");
  EXPECT_EQ(bytes_->Seek(0, SEEK_END), 0);
  EXPECT_EQ(bytes_->Tell(), 20);
  EXPECT_EQ(bytes_->Seek(10, SEEK_SET), 0);
  const std::string large(1000000, 'x');
  EXPECT_EQ(bytes_->Write(large.c_str(), large.size(), 1), 1u);
  EXPECT_EQ(bytes_->Write("", 1, 0), 0u);
  EXPECT_EQ(written(), "1234567890" + large);
}

TEST_F(BytesWriteHandlerTest, ChecksPositionsAgainstTheCapacity) {
  struct Step {
    int64_t offset;
    int whence;
    int result;
    int64_t position;
  };
  for (const Step& step : {Step{10, SEEK_SET, 0, 10},
                           {11, SEEK_SET, -1, 10},
                           {-1, SEEK_SET, -1, 10},
                           {-4, SEEK_CUR, 0, 6},
                           {5, SEEK_CUR, -1, 6},
                           {-7, SEEK_CUR, -1, 6},
                           {-3, SEEK_END, 0, 7},
                           {3, SEEK_END, 0, 7},  // both signs count from the end
                           {-11, SEEK_END, -1, 7},
                           {std::numeric_limits<int64_t>::min(), SEEK_END, -1, 7},
                           {std::numeric_limits<int64_t>::max(), SEEK_CUR, -1, 7},
                           {0, 3, -1, 7}}) {
    EXPECT_EQ(bytes_->Seek(step.offset, step.whence), step.result) << step.offset;
    EXPECT_EQ(bytes_->Tell(), step.position) << step.offset << " from " << step.whence;
  }
}

TEST_F(BytesWriteHandlerTest, WritesNothingThatMemoryCannotHold) {
  bytes_->Write("abc", 1, 3);
  const std::size_t maximum = std::numeric_limits<std::size_t>::max();
  EXPECT_EQ(bytes_->Write("abc", maximum / 4, 1), 0u);
  EXPECT_EQ(bytes_->Write("abc", maximum, maximum), 0u);
  EXPECT_EQ(written(), "abc");
  const CefRefPtr<BytesWriteHandler> tooLarge(new BytesWriteHandler(maximum / 4));
  EXPECT_EQ(tooLarge->Write("abc", 1, 3), 0u);
  const CefRefPtr<BytesWriteHandler> empty(new BytesWriteHandler(0));
  EXPECT_EQ(empty->Write("", 1, 0), 0u);
  EXPECT_EQ(empty->Write("abc", 1, 3), 3u);
  EXPECT_EQ(std::memcmp(empty->data(), "abc", 3), 0);
}

// A drag of a virtual file.
class ContentsDrag : public zantrio::test::FakeDragData {
 public:
  ContentsDrag(std::string name, std::string contents)
      : FakeDragData({}), name_(std::move(name)), contents_(std::move(contents)) {}

  CefString GetFileName() override { return name_; }
  size_t GetFileContents(CefRefPtr<CefStreamWriter> writer) override {
    return writer ? writer->Write(contents_.data(), 1, contents_.size()) : contents_.size();
  }

 private:
  const std::string name_;
  const std::string contents_;
};

class PromisedFileTest : public testing::Test {
 protected:
  std::optional<std::string> write(const std::string& name, const std::string& contents) {
    const CefRefPtr<CefDragData> data(new ContentsDrag(name, contents));
    return writePromisedFile(*data, target_);
  }

  std::string contentsOf(const std::string& name) const {
    std::ifstream file(target_ + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  const zantrio::test::TemporaryFolder folder_;
  const std::string target_ = folder_.makeFolder("in");
};

TEST_F(PromisedFileTest, NeverReplacesAFileOrLeavesTheFolder) {
  EXPECT_EQ(write("a.txt", "first"), "a.txt");
  EXPECT_EQ(write("a.txt", "second"), "a 2.txt");
  EXPECT_EQ(write("a.txt", std::string("\0third", 6)), "a 3.txt");
  EXPECT_EQ(contentsOf("a.txt"), "first");
  EXPECT_EQ(contentsOf("a 2.txt"), "second");
  EXPECT_EQ(contentsOf("a 3.txt"), std::string("\0third", 6));
  EXPECT_EQ(write("../out.txt", "text"), "out.txt");
  EXPECT_EQ(write("/etc/out.txt", "text"), "out 2.txt");
  EXPECT_EQ(write("..", "text"), "file");
  EXPECT_EQ(write("a/", "text"), "file 2");
}

TEST_F(PromisedFileTest, IsNotWrittenWithoutContentsOrFolder) {
  EXPECT_FALSE(write("a.txt", ""));
  std::filesystem::remove(target_);
  EXPECT_FALSE(write("a.txt", "text"));
  EXPECT_FALSE(std::filesystem::exists(target_));
}

}  // namespace
}  // namespace client::test
