#include "devservice/received_area.h"

#include <ctime>
#include <set>

#include "devservice/md5.h"
#include "tools/devservice/service_fixture.h"

namespace zantrio::devservice {

class ReceivedAreaTest : public ServiceTest {
 protected:
  // Sends a message with one file to oneself.
  void receive(const std::string& folder, const std::string& name, const std::string& content) {
    createMessage();
    request("PUT", announce(folder, name), content, token());
    ASSERT_EQ(askMessage("POST", "/complete").status, 200);
  }
  Json::Value messages() { return request("GET", "/api/received").json()["messages"]; }
  Json::Value download(const std::string& bucket, const std::string& id) {
    return request("POST", "/api/received/" + bucket + "/downloads", R"({"files":[")" + id + "\"]}")
        .json();
  }
  // The path and query of a download's address.
  std::string target(const Json::Value& downloads) const {
    return downloads["files"][0]["downloadDetails"]["url"].asString().substr(server_->url().size());
  }
};

TEST_F(ReceivedAreaTest, DeliversWhatWasSentToOneselfOnceItIsComplete) {
  options_.samples = false;
  restart();
  EXPECT_EQ(messages().size(), 0U);
  createMessage();
  const std::string url = announce("Ü ber", "a #1.txt");
  request("PUT", url, "hello", token());
  EXPECT_EQ(messages().size(), 0U);
  EXPECT_EQ(request("GET", "/api/received/" + bucket_).code(), "no_such_message");
  askMessage("POST", "/complete");

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
  EXPECT_EQ(request("GET", target(downloads)).body, "hello");
  EXPECT_EQ(request("HEAD", target(downloads)).response.getContentLength64(), 5);
  options_.port = server_->port();
  restart();
  EXPECT_EQ(request("GET", target(downloads)).body, "hello") << "addresses outlive a restart";
}

TEST_F(ReceivedAreaTest, AddressesAreGoodForOneFileAndForAWhileAndNotForWriting) {
  options_.urlLifetime = 1;
  restart();
  receive("", "a", "first");
  const std::string other = bucket_;
  receive("", "a", "second");
  const Json::Value downloads = download(bucket_, "1");
  const std::string url = target(downloads);
  std::string foreign = url;
  foreign.replace(foreign.find(bucket_), bucket_.size(), other);
  EXPECT_EQ(request("GET", foreign).code(), "wrong_signature");
  std::string later = url;
  later.replace(later.find("expires=") + 8, 1, "9");
  EXPECT_EQ(request("GET", later).code(), "wrong_signature");
  EXPECT_EQ(request("DELETE", url).status, 409) << "a complete message stays as it is";
  waitUntilPast(downloads["files"][0]["downloadDetails"]["expires"].asInt64());
  EXPECT_EQ(request("GET", url).status, 403);
  EXPECT_EQ(request("GET", url).code(), "url_expired");
  EXPECT_EQ(request("GET", target(download(bucket_, "1"))).body, "second");
}

TEST_F(ReceivedAreaTest, ExpiredMessagesAreListedButGiveNothing) {
  createMessage(R"({"lifetimeSeconds":0})");
  request("PUT", announce("", "a"), "x", token());
  askMessage("POST", "/complete");
  waitUntilPast(expires_);
  EXPECT_EQ(messages()[0]["bucketId"], bucket_);
  const Answer refused =
      request("POST", "/api/received/" + bucket_ + "/downloads", R"({"files":["1"]})");
  EXPECT_EQ(refused.status, 410);
  EXPECT_EQ(refused.code(), "expired");
}

TEST_F(ReceivedAreaTest, RefusesRequestsThatMakeNoSense) {
  receive("", "a", "x");
  const std::string message = "/api/received/" + bucket_;
  for (const char* body : {"[]", "{}", R"({"files":[]})", R"({"files":[1]})", R"({"files":"1"})"}) {
    EXPECT_EQ(request("POST", message + "/downloads", body).code(), "bad_request") << body;
  }
  EXPECT_EQ(request("POST", message + "/downloads", R"({"files":["2"]})").code(), "no_such_file");
  EXPECT_EQ(request("GET", message + "/downloads").code(), "not_supported");
  EXPECT_EQ(request("GET", message + "/files?after=x").code(), "bad_request");
  EXPECT_EQ(request("GET", message + "/nothing").code(), "not_found");
  EXPECT_EQ(request("GET", "/api/received/none/files").code(), "no_such_message");
}

TEST_F(ReceivedAreaTest, OffersSamplesThatCanBeDownloadedAtOnce) {
  std::set<std::string> kinds;
  for (const Json::Value& message : messages()) {
    const std::string bucket = message["bucketId"].asString();
    const Json::Value files =
        request("GET", "/api/received/" + bucket + "/files?count=9").json()["files"];
    for (const Json::Value& file : files) {
      const std::string url = target(download(bucket, file["id"].asString()));
      const std::string content = request("GET", url).body;
      CMd5 md5;
      md5.update(content.data(), content.size());
      EXPECT_EQ(toHex(md5.finish()), file["md5Digest"].asString()) << file["path"];
      EXPECT_EQ(content.size(), file["size"].asUInt64()) << file["path"];
      EXPECT_EQ(request("HEAD", url).response.get("ETag"),
                '"' + file["md5Digest"].asString() + '"');
      if (content.empty())
        kinds.insert("empty");
      if (content.size() > 30'000'000)
        kinds.insert("large");
      if (content.rfind("\x89PNG", 0) == 0)
        kinds.insert("picture");
      if (file["path"].asString().find(' ') != std::string::npos)
        kinds.insert("blank");
    }
  }
  EXPECT_EQ(kinds, (std::set<std::string>{"empty", "large", "picture", "blank"}));
  EXPECT_FALSE(
      std::filesystem::exists(std::filesystem::path(options_.data) / "messages/sample-welcome"));
}

TEST_F(ReceivedAreaTest, SamplesAreServedInPartsAndNotChanged) {
  const Json::Value files = request("GET", "/api/received/sample-welcome/files").json()["files"];
  const Json::Value& large = files[files.size() - 1];
  const std::string url = target(download("sample-welcome", large["id"].asString()));
  Headers range = {{"Range", "bytes=1000003-1000020"}};
  const Answer part = request("GET", url, "", range);
  EXPECT_EQ(part.status, 206);
  range["Range"] = "bytes=1000000-1000029";
  EXPECT_EQ(request("GET", url, "", range).body.substr(3, 18), part.body);
  range["If-Range"] = "\"another\"";
  EXPECT_EQ(request("HEAD", url, "", range).response.getContentLength64(), 48'000'000);
  range = {{"Range", "bytes=48000000-"}};
  EXPECT_EQ(request("GET", url, "", range).status, 416);
  EXPECT_EQ(request("PUT", url, "x").status, 404);
  EXPECT_EQ(request("GET", "/storage/sample-welcome/none").status, 404);
}

TEST_F(ReceivedAreaTest, ListsThousandsOfFilesInPages) {
  const std::string files = "/api/received/sample-many/files";
  std::string after = "0";
  std::set<std::string> ids;
  int pages = 0;
  for (; after != "" && pages < 10; ++pages) {
    const Json::Value page = request("GET", files + "?count=4000&after=" + after).json();
    for (const Json::Value& file : page["files"]) {
      ids.insert(file["id"].asString());
    }
    after = page["next"].asString();
  }
  EXPECT_EQ(pages, 3);
  EXPECT_EQ(ids.size(), 10'000U);
}

TEST_F(ReceivedAreaTest, TakesReportsOfProgressFromBothSides) {
  receive("", "a", "x");
  const std::string progress = "/api/messages/" + bucket_ + "/progress";
  EXPECT_EQ(request("POST", progress, R"({"direction":"upload","bytesTransferred":5})").code(),
            "wrong_token");
  EXPECT_EQ(request("POST", progress, R"({"direction":"up"})", token()).code(), "bad_request");
  const Headers reader = {{"X-Zantrio-Token", download(bucket_, "1")["token"].asString()}};
  for (int i = 1; i <= 2; ++i) {
    EXPECT_EQ(request("POST", progress,
                      R"({"direction":"download","state":"TRANSFERRING","bytesTransferred":)" +
                          std::to_string(i) + "}",
                      reader)
                  .status,
              204);
  }
  const Json::Value reports = request("GET", progress).json();
  EXPECT_EQ(reports["download"]["reports"].asInt(), 2);
  EXPECT_EQ(reports["download"]["bytesTransferred"].asInt(), 2);
  EXPECT_FALSE(reports.isMember("upload"));
}

TEST_F(ReceivedAreaTest, KeepsWhatEachGroupOfABucketReportsOfItsTroubles) {
  receive("", "a", "x");
  const std::string progress = "/api/messages/" + bucket_ + "/progress";
  const auto report = [&](const std::string& rest) {
    return request("POST", progress, R"({"direction":"upload","state":"ERRORED",)" + rest + "}",
                   token());
  };
  const std::string failed =
      R"({"fileId":"1","code":"refused","reason":"the server answered 403"})";
  EXPECT_EQ(report(R"("group":"4","filesFailed":1,"failures":[)" + failed + "]").status, 204);
  EXPECT_EQ(report(R"("group":"5","waitingFor":{"code":"disk_full","reason":"full"})").status, 204);
  const Json::Value newest = request("GET", progress).json()["upload"];
  EXPECT_EQ(newest["waitingFor"]["code"].asString(), "disk_full");
  EXPECT_TRUE(newest["failures"].empty());
  const Json::Value earlier = request("GET", progress + "?group=4").json()["upload"];
  EXPECT_TRUE(earlier["waitingFor"].isNull());
  EXPECT_EQ(earlier["failures"][0]["fileId"].asString(), "1");
  EXPECT_EQ(earlier["failures"][0]["code"].asString(), "refused");
  EXPECT_TRUE(request("GET", progress + "?group=6").json().empty());
  const std::string tooLong(501, 'x');
  EXPECT_EQ(report(R"("group":")" + tooLong + "\"").code(), "bad_request");
  std::string many = failed;
  for (int i = 0; i < 100; ++i) {
    many += "," + failed;
  }
  EXPECT_EQ(report(R"("failures":[)" + many + "]").code(), "bad_request");
}

}  // namespace zantrio::devservice
