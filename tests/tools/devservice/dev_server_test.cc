#include "devservice/dev_server.h"

#include <stdexcept>
#include <thread>

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

TEST_F(DevServerTest, RefusesUnusableFolders) {
  Options unwritable = options_;
  unwritable.data = folder_.path() + "/web/index.html";
  EXPECT_THROW(CDevServer{unwritable}, std::runtime_error);
  Options noPage = options_;
  noPage.web = folder_.path() + "/javascript";
  EXPECT_THROW(CDevServer{noPage}, std::runtime_error);
}

TEST_F(DevServerTest, KeepsTheFilesOfManyConnectionsApart) {
  constexpr int kClients = 24;
  constexpr int kFiles = 20;
  createMessage();
  std::vector<std::string> urls;
  for (int i = 0; i < kClients * kFiles; ++i) {
    urls.push_back(announce("many", std::to_string(i)));
  }
  {
    std::vector<std::jthread> clients;
    for (int client = 0; client < kClients; ++client) {
      clients.emplace_back([&, client] {
        for (int i = client; i < kClients * kFiles; i += kClients) {
          putOverNewConnection(urls[static_cast<std::size_t>(i)], "content " + std::to_string(i));
        }
      });
    }
  }
  for (int i = 0; i < kClients * kFiles; ++i) {
    EXPECT_EQ(readFile(arrivedFile("many/" + std::to_string(i))), "content " + std::to_string(i));
  }
  EXPECT_EQ(callMessage("POST", "/complete").status, 200);
}

}  // namespace zantrio::devservice
