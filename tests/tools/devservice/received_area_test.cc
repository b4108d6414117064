#include "devservice/received_area.h"

#include <ctime>

#include "tools/devservice/service_fixture.h"

namespace zantrio::devservice {

class ReceivedAreaTest : public ServiceTest {
 protected:
  void receive(const std::string& name, const std::string& content) {
    createMessage();
    call("PUT", announce("", name), content);
    ASSERT_EQ(callMessage("POST", "/complete").status, 200);
  }
  Json::Value messages() { return request("GET", "/api/received").json()["messages"]; }
  Json::Value download(const std::string& bucket, const std::string& id) {
    return request("POST", "/api/received/" + bucket + "/downloads", R"({"files":[")" + id + "\"]}")
        .json();
  }
  // The path and query of a download's URL.
  std::string target(const Json::Value& downloads) const {
    return downloads["files"][0]["downloadDetails"]["url"].asString().substr(server_->url().size());
  }
};

TEST_F(ReceivedAreaTest, DeliversAMessageOnceItIsComplete) {
  options_.samples = false;
  restart();
  createMessage();
  call("PUT", announce("Ü ber", "a #1.txt"), "hello");
  EXPECT_EQ(messages().size(), 0U);
  EXPECT_EQ(request("GET", "/api/received/" + bucket_).code(), "no_such_message");
  callMessage("POST", "/complete");

  const Json::Value message = messages()[0];
  EXPECT_EQ(message["bucketId"], bucket_);
  EXPECT_EQ(message["subject"], "Holiday");
  EXPECT_EQ(message["sender"], "You <you@localhost>");
  EXPECT_GT(message["expires"].asUInt64(), static_cast<std::uint64_t>(std::time(nullptr)));
  const Json::Value file = request("GET", "/api/received/" + bucket_ + "/files").json()["files"][0];
  EXPECT_EQ(file["path"], "Ü ber/a #1.txt");
  EXPECT_EQ(file["size"].asInt(), 5);
  EXPECT_EQ(file["md5Digest"], "5d41402abc4b2a76b9719d911017c592");

  const Json::Value downloads = download(bucket_, file["id"].asString());
  EXPECT_EQ(downloads["files"][0]["path"], "Ü ber/a #1.txt");
  EXPECT_EQ(request("HEAD", target(downloads)).header.getContentLength64(), 5);
  options_.port = server_->port();
  restart();
  EXPECT_EQ(request("GET", target(downloads)).body, "hello") << "URLs stay valid after a restart";
}

TEST_F(ReceivedAreaTest, SignsUrlsForOneFileForAWhileAndNotForWriting) {
  options_.urlLifetime = 1;
  restart();
  receive("a", "first");
  const std::string other = bucket_;
  receive("a", "second");
  const Json::Value downloads = download(bucket_, "1");
  const std::string url = target(downloads);
  std::string foreign = url;
  foreign.replace(foreign.find(bucket_), bucket_.size(), other);
  EXPECT_EQ(request("GET", foreign).code(), "wrong_signature");
  std::string later = url;
  later.replace(later.find("expires=") + 8, 1, "9");
  EXPECT_EQ(request("GET", later).code(), "wrong_signature");
  EXPECT_EQ(request("DELETE", url).status, 409) << "a complete message does not change";
  waitUntilPast(downloads["files"][0]["downloadDetails"]["expires"].asInt64());
  EXPECT_EQ(request("GET", url).code(), "url_expired");
  options_.urlLifetime = 3600;
  restart();
  EXPECT_EQ(request("GET", target(download(bucket_, "1"))).body, "second");
}

}  // namespace zantrio::devservice
