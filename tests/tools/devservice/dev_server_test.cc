#include "devservice/dev_server.h"

#include "devservice/file_io.h"
#include "tools/devservice/service_fixture.h"

namespace zantrio::devservice {

using DevServerTest = ServiceTest;

TEST_F(DevServerTest, ContinuesWithItsMessagesAfterARestart) {
  createMessage();
  const std::string sent = announce("d", "sent");
  const std::string waiting = announce("d", "waiting");
  announce("d", "left out");
  call("PUT", sent, "x");
  request("DELETE", "/api/messages/" + bucket_ + "/files/3");
  options_.port = server_->port();
  restart();

  const Json::Value files = callMessage("GET", "/files").json()["files"];
  ASSERT_EQ(files.size(), 2U);
  EXPECT_TRUE(files[0]["arrived"].asBool());
  EXPECT_EQ(files[0]["md5"], "9dd4e461268c8034f5c8564e155c67a6");
  EXPECT_EQ(call("PUT", waiting, "y").status, 200);
  EXPECT_NE(announce("d", "sent"), sent);
  call("PUT", "/storage/" + bucket_ + "/d/sent%20%282%29", "z");
  EXPECT_EQ(callMessage("POST", "/complete").status, 200);
  restart();
  EXPECT_EQ(request("GET", "/api/messages/" + bucket_).json()["state"], "completed");
}

TEST_F(DevServerTest, IgnoresAJournalLineThatACrashTruncated) {
  createMessage();
  announce("", "a");
  const auto journal =
      std::filesystem::path(options_.data) / "messages" / bucket_ / "journal.jsonl";
  CFile::openForAppending(journal).write(std::string(R"({"announced":"half)"));
  restart();
  EXPECT_EQ(announce("", "b"), "/storage/" + bucket_ + "/b");
  restart();
  const Json::Value files = callMessage("GET", "/files").json()["files"];
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[1]["path"], "b");
}

}  // namespace zantrio::devservice
