#include "devservice/storage_area.h"

#include <Poco/Net/StreamSocket.h>

#include "tools/devservice/service_fixture.h"

namespace zantrio::devservice {

using StorageAreaTest = ServiceTest;

TEST_F(StorageAreaTest, KeepsFilesUnderTheirOwnNamesAndAnswersTheirChecksum) {
  createMessage();
  const Answer answer = request("PUT", announce("Ünter/b c", "100%?#.txt"), "hello", token());
  EXPECT_EQ(answer.status, 200) << answer.body;
  EXPECT_EQ(answer.response.get("ETag"), "\"5d41402abc4b2a76b9719d911017c592\"");
  EXPECT_EQ(readFile(arrivedFile("Ünter/b c/100%?#.txt")), "hello");
  EXPECT_EQ(filesOnTheWay(), 0U);
}

TEST_F(StorageAreaTest, TakesEmptyFilesAndReplacesWhatWasThere) {
  createMessage();
  const std::string url = announce("", "a");
  EXPECT_EQ(request("PUT", url, "", token()).response.get("ETag"),
            "\"d41d8cd98f00b204e9800998ecf8427e\"");
  EXPECT_TRUE(std::filesystem::exists(arrivedFile("a")));
  EXPECT_EQ(request("PUT", url, std::string(3'000'000, 'x'), token()).status, 200);
  EXPECT_EQ(std::filesystem::file_size(arrivedFile("a")), 3'000'000U);
}

TEST_F(StorageAreaTest, RefusesWrongTokensAndWhatWasNotAnnounced) {
  createMessage();
  const std::string url = announce("", "a");
  EXPECT_EQ(request("PUT", url, "x").code(), "wrong_token");
  EXPECT_EQ(request("PUT", url, "x", {{"X-Zantrio-Token", "no"}}).status, 403);
  EXPECT_EQ(request("GET", url).status, 403);
  EXPECT_EQ(request("PUT", "/storage/" + bucket_ + "/other", "x", token()).code(), "no_such_file");
  EXPECT_EQ(request("PUT", "/storage/none/a", "x", token()).code(), "no_such_message");
  EXPECT_EQ(request("POST", url, "", token()).status, 501);
  EXPECT_FALSE(std::filesystem::exists(arrivedFile("a")));
}

TEST_F(StorageAreaTest, RefusesExpiredTokens) {
  createMessage(R"({"tokenLifetimeSeconds":0})");
  waitUntilPast(tokenExpires_);
  EXPECT_EQ(request("PUT", "/storage/" + bucket_ + "/a", "x", token()).code(), "token_expired");
}

TEST_F(StorageAreaTest, NeverLeavesTheMessagesFolder) {
  createMessage();
  for (const char* path :
       {"/../../x", "/%2e%2e/x", "/a%2f..%2f..%2fx", "/%00", "/", "/a/", "//x", "/%ff", "/a/./b"}) {
    const Answer answer = request("PUT", "/storage/" + bucket_ + path, "x", token());
    EXPECT_EQ(answer.status, 400) << path;
    EXPECT_EQ(answer.code(), "bad_name") << path;
  }
}

TEST_F(StorageAreaTest, ChecksTheStatedChecksum) {
  createMessage();
  const std::string url = announce("", "a");
  Headers headers = token();
  headers["Content-MD5"] = "AAAAAAAAAAAAAAAAAAAAAA==";
  EXPECT_EQ(request("PUT", url, "hello", headers).code(), "bad_digest");
  EXPECT_FALSE(std::filesystem::exists(arrivedFile("a")));
  EXPECT_EQ(filesOnTheWay(), 0U);
  headers["Content-MD5"] = "XUFAKrxLKna5cZ2REBfFkg==";
  EXPECT_EQ(request("PUT", url, "hello", headers).status, 200);
}

TEST_F(StorageAreaTest, NeedsALengthAndLeavesNothingOfABodyThatIsCutShort) {
  createMessage();
  const std::string url = announce("", "a");
  const auto sendRaw = [&](const std::string& lines) {
    Poco::Net::StreamSocket socket(Poco::Net::SocketAddress("127.0.0.1", server_->port()));
    const std::string text =
        "PUT " + url + " HTTP/1.1\r\nHost: x\r\nX-Zantrio-Token: " + token_ + "\r\n" + lines;
    socket.sendBytes(text.data(), static_cast<int>(text.size()));
    socket.shutdownSend();
    std::string answer(4096, '\0');
    const int count = socket.receiveBytes(answer.data(), static_cast<int>(answer.size()));
    return answer.substr(0, static_cast<std::size_t>(std::max(0, count)));
  };
  EXPECT_EQ(sendRaw("\r\n").rfind("HTTP/1.1 411", 0), 0U);
  EXPECT_EQ(
      sendRaw("Transfer-Encoding: chunked\r\n\r\n1\r\nx\r\n0\r\n\r\n").rfind("HTTP/1.1 411", 0),
      0U);
  EXPECT_EQ(sendRaw("Content-Length: 10\r\n\r\nfive5"), "");
  EXPECT_FALSE(std::filesystem::exists(arrivedFile("a")));
  EXPECT_EQ(filesOnTheWay(), 0U);
}

TEST_F(StorageAreaTest, ShowsARefusalToWhoIsSendingALargeBody) {
  createMessage();
  const Answer answer = request("PUT", announce("", "a"), std::string(20'000'000, 'x'));
  EXPECT_EQ(answer.status, 403);
  EXPECT_EQ(answer.code(), "wrong_token");
  EXPECT_FALSE(answer.response.getKeepAlive());
}

TEST_F(StorageAreaTest, GivesFilesBackWholeAndInParts) {
  createMessage();
  const std::string url = announce("", "a");
  EXPECT_EQ(request("GET", url, "", token()).code(), "no_such_file");
  const std::string etag = request("PUT", url, "0123456789", token()).response.get("ETag");
  EXPECT_EQ(request("GET", url + "?token=" + token_).body, "0123456789");
  const Answer head = request("HEAD", url, "", token());
  EXPECT_EQ(head.response.getContentLength64(), 10);
  EXPECT_EQ(head.response.get("ETag"), etag);

  Headers ranged = token();
  ranged["Range"] = "bytes=3-5";
  const Answer part = request("GET", url, "", ranged);
  EXPECT_EQ(part.status, 206);
  EXPECT_EQ(part.body, "345");
  EXPECT_EQ(part.response.get("Content-Range"), "bytes 3-5/10");
  ranged["If-Range"] = etag;
  EXPECT_EQ(request("GET", url, "", ranged).status, 206);
  ranged["If-Range"] = "\"other\"";
  EXPECT_EQ(request("GET", url, "", ranged).body, "0123456789");
  ranged.erase("If-Range");
  ranged["Range"] = "bytes=10-";
  const Answer beyond = request("GET", url, "", ranged);
  EXPECT_EQ(beyond.status, 416);
  EXPECT_EQ(beyond.response.get("Content-Range"), "bytes */10");
}

TEST_F(StorageAreaTest, DeletesWhatArrivedAndTakesItAgain) {
  createMessage();
  const std::string url = announce("", "a");
  request("PUT", url, "x", token());
  EXPECT_EQ(request("DELETE", url, "", token()).status, 204);
  EXPECT_EQ(request("DELETE", url, "", token()).status, 204);
  EXPECT_FALSE(std::filesystem::exists(arrivedFile("a")));
  EXPECT_EQ(request("PUT", url, "y", token()).status, 200);
}

}  // namespace zantrio::devservice
