#include "devservice/storage_area.h"

#include <Poco/Net/StreamSocket.h>

#include "tools/devservice/service_fixture.h"

namespace zantrio::devservice {

class StorageAreaTest : public ServiceTest {
 protected:
  StorageAreaTest() {
    createMessage();
    url_ = announce("", "a");
  }

  // The beginning of the response to a PUT with these header lines and body.
  std::string sendRaw(const std::string& lines) const {
    Poco::Net::StreamSocket socket(Poco::Net::SocketAddress("127.0.0.1", server_->port()));
    const std::string text = "PUT " + url_ +
                             " HTTP/1.1\r\nHost: " + socket.peerAddress().toString() +
                             "\r\nX-Zantrio-Token: " + token_ + "\r\n" + lines;
    socket.sendBytes(text.data(), static_cast<int>(text.size()));
    socket.shutdownSend();
    std::string response(4096, '\0');
    const int count = socket.receiveBytes(response.data(), static_cast<int>(response.size()));
    return response.substr(0, static_cast<std::size_t>(std::max(0, count))).substr(0, 12);
  }
  void expectNothingArrived() const {
    EXPECT_FALSE(std::filesystem::exists(arrivedFile("a")));
    EXPECT_EQ(incomingFiles(), 0U);
  }

  std::string url_;
};

TEST_F(StorageAreaTest, RefusesWrongTokensAndUnannouncedFiles) {
  EXPECT_EQ(request("PUT", url_, "x").code(), "wrong_token");
  EXPECT_EQ(request("PUT", url_, "x", {{"X-Zantrio-Token", "no"}}).status, 403);
  EXPECT_EQ(request("GET", url_).status, 403);
  EXPECT_EQ(call("PUT", "/storage/" + bucket_ + "/other", "x").code(), "no_such_file");
  EXPECT_EQ(call("PUT", "/storage/none/a", "x").code(), "no_such_message");
  EXPECT_EQ(call("POST", url_).status, 501);
  expectNothingArrived();
  createMessage(R"({"tokenLifetimeSeconds":0})");
  waitUntilPast(tokenExpires_);
  EXPECT_EQ(call("PUT", "/storage/" + bucket_ + "/a", "x").code(), "token_expired");
}

TEST_F(StorageAreaTest, NeverLeavesTheMessagesFolder) {
  for (const char* path :
       {"/../../x", "/%2e%2e/x", "/a%2f..%2f..%2fx", "/%00", "/", "/a/", "//x", "/%ff", "/a/./b"}) {
    const Response refused = call("PUT", "/storage/" + bucket_ + path, "x");
    EXPECT_EQ(refused.status, 400) << path;
    EXPECT_EQ(refused.code(), "bad_name") << path;
  }
}

TEST_F(StorageAreaTest, NeedsALengthAndKeepsNothingOfATruncatedBody) {
  EXPECT_EQ(sendRaw("\r\n"), "HTTP/1.1 411");
  EXPECT_EQ(sendRaw("Transfer-Encoding: chunked\r\n\r\n1\r\nx\r\n0\r\n\r\n"), "HTTP/1.1 411");
  EXPECT_EQ(sendRaw("Content-Length: 10\r\n\r\nfive5"), "");
  expectNothingArrived();
}

}  // namespace zantrio::devservice
