#include "files/query_handler_file_handle_chooser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/reader.h>

#include "bridge/drag_handler.h"
#include "bridge/query_handler_context.h"
#include "src/fakes/fake_browser.h"
#include "src/fakes/fake_query_callback.h"
#include "src/fakes/fake_services.h"
#include "support/log_capture.h"
#include "support/temporary_folder.h"

namespace zantrio {
namespace {

using test::FakeServices;
using testing::ElementsAre;
using testing::IsEmpty;

class FileHandleChooser : public testing::Test {
 protected:
  FileHandleChooser() {
    services_.reset();
    services_.permissions = IFilePermissionsRetriever::kRead;
  }

  std::string query(const std::string& method) { return test::askBridge(handler_, method); }

  Json::Value queryJson(const std::string& method) {
    Json::Value value;
    const std::string text = query(method);
    EXPECT_TRUE(Json::Reader().parse(text, value)) << text;
    return value;
  }

  void drag(const std::vector<std::string>& paths) {
    DragMessage message;
    message.kind = DragMessage::kFiles;
    message.payload = FileData{std::vector<Poco::Path>(paths.begin(), paths.end())};
    EXPECT_TRUE(handler_.onDragData(message));
  }

  // Gives the handler the browser.
  void connect() {
    QueryHandlerContext context;
    context.browser = browser_.get();
    handler_.setHandlerData(context);
  }

  const std::vector<test::FakeFrame::Script>& scripts() const { return frame_->scripts; }

  std::string urlOf(const std::string& path) const { return "file://" + path; }

  FakeServices& services_ = FakeServices::instance();
  const test::TemporaryFolder folder_;
  const test::LogCapture log_;
  const CefRefPtr<test::FakeBrowser> browser_ = new test::FakeBrowser;
  const CefRefPtr<test::FakeFrame> frame_ = browser_->frame;
  CQueryHandlerFileHandleChooser handler_;
};

std::vector<std::string> namesOf(const Json::Value& answer) {
  std::vector<std::string> names;
  for (const Json::Value& file : answer["files"]) {
    names.push_back(file["name"].asString());
  }
  return names;
}

TEST_F(FileHandleChooser, AnswersNullForACancelledOrMissingDialog) {
  EXPECT_EQ(query("selectFiles"), "null\n");
  EXPECT_EQ(query("selectFolder"), "null\n");
  EXPECT_THAT(services_.calls, ElementsAre("files: Choose files", "folder: Choose folder"));
  services_.choices = {{"file:///a%zz"}};
  EXPECT_TRUE(
      query("selectFiles").starts_with("-1 Exception caught when executing query handler: "));
  services_.available = false;
  EXPECT_EQ(query("selectFiles"), "null\n");
  EXPECT_EQ(query("selectFolder"), "null\n");
  EXPECT_EQ(services_.openDialogs, 0);
}

TEST_F(FileHandleChooser, DescribesOneChosenFile) {
  const std::string path = folder_.makeFile("q/my 1.txt", "abc");
  const std::string url = urlOf(folder_.path() + "/q/my%201.txt");
  services_.choices = {{url}};
  const Json::Value answer = queryJson("selectFiles");
  ASSERT_EQ(answer["files"].size(), 1U);
  EXPECT_EQ(answer["files"][0]["fileURL"], url);
  EXPECT_EQ(answer["files"][0]["size"].asUInt64(), 3U);
  EXPECT_TRUE(answer["files"][0]["path"].isNull());
  EXPECT_EQ(answer["directoryName"], "q");
  EXPECT_EQ(answer["summary"], "my 1.txt");
  EXPECT_THAT(
      log_.lines(),
      ElementsAre(testing::_, "information selectFiles: User selected the following files: ",
                  "information \t" + url));
}

TEST_F(FileHandleChooser, NamesTheFolderThatAllChosenFilesShareAndSkipsThoseThatAreGone) {
  const std::string one = urlOf(folder_.makeFile("a/x/1"));
  const std::string two = urlOf(folder_.makeFile("b/x/2"));
  const std::string other = urlOf(folder_.makeFile("y/3"));
  services_.choices = {{one, two}, {one, other, urlOf(folder_.path() + "/gone"), two}};
  Json::Value answer = queryJson("selectFiles");
  EXPECT_EQ(answer["directoryName"], "x");
  EXPECT_EQ(answer["summary"], "x");
  answer = queryJson("selectFiles");
  EXPECT_TRUE(answer.isMember("directoryName") && answer["directoryName"].isNull());
  EXPECT_TRUE(answer.isMember("summary") && answer["summary"].isNull());
  EXPECT_THAT(namesOf(answer), ElementsAre("1", "3", "2"));
}

TEST_F(FileHandleChooser, AnswersAnEmptyListWhenNothingWasChosen) {
  services_.choices = {{}, {}};
  const Json::Value answer = queryJson("selectFiles");
  EXPECT_EQ(answer["files"], Json::Value(Json::arrayValue));
  EXPECT_TRUE(answer["directoryName"].isNull());
  EXPECT_TRUE(answer["summary"].isNull());
  EXPECT_TRUE(queryJson("selectFolder").isNull());
}

TEST_F(FileHandleChooser, TellsOfEveryUnreadableItemAndAsksAgain) {
  const std::string good = folder_.makeFile("good");
  const std::string bad1 = folder_.makeFile("bad 1");
  const std::string bad2 = folder_.makeFile("bad2");
  services_.permissionsOf = {{bad1, IFilePermissionsRetriever::kWrite}, {bad2, 0}};
  services_.choices = {
      {urlOf(folder_.path() + "/bad%201"), urlOf(good), urlOf(bad2)}, {urlOf(bad2)}, {urlOf(good)}};
  EXPECT_THAT(namesOf(queryJson("selectFiles")), ElementsAre("good"));
  const auto alertFor = [](const std::string& path) {
    return "alert Zantrio does not have read permissions to " + path +
           ". Please select another item.";
  };
  const std::string ask = "files: Choose files";
  EXPECT_THAT(services_.calls,
              ElementsAre(ask, alertFor(bad1), alertFor(bad2), ask, alertFor(bad2), ask));
}

TEST_F(FileHandleChooser, WalksTheChosenFolder) {
  folder_.makeFile("Photos.2019/sub/1.jpg");
  const std::string url = urlOf(folder_.path() + "/Photos.2019");
  services_.choices = {{url}, {url + "/"}};
  Json::Value answer = queryJson("selectFolder");
  EXPECT_THAT(namesOf(answer), ElementsAre("1.jpg"));
  EXPECT_EQ(answer["files"][0]["path"], "sub");
  EXPECT_EQ(answer["directoryName"], "Photos");
  EXPECT_EQ(answer["summary"], "Photos");
  EXPECT_THAT(log_.lines(), ElementsAre(testing::_,
                                        "information selectFolder: user selected the following "
                                        "folder: " +
                                            url));
  answer = queryJson("selectFolder");
  EXPECT_EQ(answer["files"][0]["path"], "sub");
  EXPECT_TRUE(answer["directoryName"].isNull());
  EXPECT_TRUE(answer["summary"].isNull());
}

TEST_F(FileHandleChooser, DescribesTheFilesOfTheLastDragOnce) {
  drag({folder_.makeFile("first.txt")});
  drag({folder_.makeFile("q/a.txt")});
  EXPECT_FALSE(handler_.onDragData(DragMessage()));  // carries no files
  DragMessage foreign;
  foreign.kind = DragMessage::kFiles;
  foreign.payload = std::string("no paths");
  EXPECT_THROW(handler_.onDragData(foreign), Poco::BadCastException);
  EXPECT_THAT(namesOf(queryJson("handleDrop")), ElementsAre("a.txt"));
  EXPECT_EQ(query("handleDrop"), "null\n");
  EXPECT_EQ(log_.lines().back(),
            "error FileHandleChooser: handleDrop method called, but no files where previously "
            "dragged!");
}

TEST_F(FileHandleChooser, IgnoresADockDropWithoutBrowserOrMainFrame) {
  const std::string dragged = folder_.makeFile("dragged.txt");
  drag({dragged});
  handler_.filesDropped({folder_.makeFile("dropped.txt")}, true, false);
  browser_->frame = nullptr;
  connect();
  handler_.filesDropped({folder_.makeFile("dropped.txt")}, true, false);
  EXPECT_THAT(scripts(), IsEmpty());
  EXPECT_THAT(namesOf(queryJson("handleDrop")), ElementsAre("dragged.txt"));
}

TEST_F(FileHandleChooser, PushesADockDropIntoThePage) {
  connect();
  const std::string one = folder_.makeFile("q/one.txt");
  const std::string two = folder_.makeFile("q/two.txt");
  handler_.filesDropped({one, two}, true, false);
  ASSERT_EQ(scripts().size(), 1U);
  const std::string head = "setTimeout(function() { window._fileHandleChooser_handleDropFiles(";
  const std::string tail = ")}, 0);";
  const std::string& code = scripts()[0].code;
  ASSERT_TRUE(code.starts_with(head) && code.ends_with(tail)) << code;
  Json::Value drop;
  const std::string json = code.substr(head.size(), code.size() - head.size() - tail.size());
  ASSERT_TRUE(Json::Reader().parse(json, drop)) << json;
  EXPECT_EQ(json, drop.toStyledString());
  EXPECT_THAT(namesOf(drop), testing::UnorderedElementsAre("one.txt", "two.txt"));
  EXPECT_EQ(drop["directoryName"], "q");
  EXPECT_EQ(drop["complete"], true);
  EXPECT_EQ(drop["defer"], false);
  EXPECT_EQ(scripts()[0].url, frame_->url);
  EXPECT_EQ(scripts()[0].line, 0);
  EXPECT_THAT(log_.lines(),
              ElementsAre("information The following files have been dropped to app dock icon: ",
                          "information \t" + one, "information \t" + two));
}

}  // namespace
}  // namespace zantrio
