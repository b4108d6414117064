#include "osr/input/promised_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "src/fakes/fake_browser.h"
#include "support/temporary_folder.h"

namespace client::test {
namespace {

// A drag of a file's contents.
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
    return writePromisedFile(*data, in_);
  }

  std::string contentsOf(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(in_ + "/" + name, std::ios::binary).rdbuf();
    return text.str();
  }

  const zantrio::test::TemporaryFolder folder_;
  const std::string in_ = folder_.makeFolder("in");
};

TEST_F(PromisedFileTest, ReplacesNothingThatIsThere) {
  EXPECT_EQ(write("a.txt", "first"), "a.txt");
  EXPECT_EQ(write("a.txt", "second"), "a 2.txt");
  EXPECT_EQ(write("a.txt", std::string("\0third", 6)), "a 3.txt");
  EXPECT_EQ(contentsOf("a.txt"), "first");
  EXPECT_EQ(contentsOf("a 2.txt"), "second");
  EXPECT_EQ(contentsOf("a 3.txt"), std::string("\0third", 6));
}

TEST_F(PromisedFileTest, StaysInTheFolderWhateverThePageCallsTheFile) {
  EXPECT_EQ(write("../out.txt", "text"), "out.txt");
  EXPECT_EQ(write("/etc/out.txt", "text"), "out 2.txt");
  EXPECT_EQ(write("..", "text"), "file");
  EXPECT_EQ(write("a/", "text"), "file 2");
  EXPECT_EQ(write("", "text"), "file 3");
}

TEST_F(PromisedFileTest, IsNoneWithoutContentsOrWhereItCannotBeWritten) {
  EXPECT_FALSE(write("a.txt", ""));
  std::filesystem::remove(in_);
  EXPECT_FALSE(write("a.txt", "text"));
  EXPECT_FALSE(std::filesystem::exists(in_));
}

}  // namespace
}  // namespace client::test
