#include <Poco/Net/NetException.h>
#include <Poco/Timestamp.h>

#include "tools/devservice/service_fixture.h"

namespace zantrio::devservice {

// The effects of fault rules, seen from the client.
class FaultsTest : public ServiceTest {
 protected:
  FaultsTest() {
    createMessage();
    url_ = announce("", "a.bin");
  }

  void addRule(const std::string& rule) {
    ASSERT_EQ(request("POST", "/faults", rule).status, 201) << rule;
  }
  Response put(const std::string& body) { return call("PUT", url_, body); }
  void reconnect() { session_->reset(); }

  std::string url_;
};

TEST_F(FaultsTest, RespondsWithTheStatusRetryAfterAndTagOfTheRule) {
  addRule(
      R"({"method":"PUT","path":"*a.bin","count":1,"type":"status","status":429,"retryAfter":7})");
  const Response failed = put("x");
  EXPECT_EQ(failed.status, 429);
  EXPECT_EQ(failed.header.get("Retry-After"), "7");
  addRule(R"({"method":"PUT","count":1,"type":"status","status":200,"body":"<Error/>"})");
  EXPECT_EQ(put("x").body, "<Error/>");
  EXPECT_EQ(put("x").status, 200);
  addRule(R"({"method":"PUT","count":1,"type":"etag"})");
  EXPECT_EQ(put("hello").header.get("ETag"), "\"00000000000000000000000000000000\"");
  EXPECT_EQ(readFile(arrivedFile("a.bin")), "hello");
  EXPECT_EQ(put("hello").header.get("ETag"), "\"5d41402abc4b2a76b9719d911017c592\"");
}

TEST_F(FaultsTest, ResetsTheConnectionAfterTheBytesOfTheRule) {
  addRule(R"({"method":"PUT","count":1,"type":"reset","afterBytes":1000})");
  EXPECT_THROW(put(std::string(4'000'000, 'x')), Poco::Exception);
  reconnect();
  EXPECT_FALSE(std::filesystem::exists(arrivedFile("a.bin")));
  EXPECT_EQ(put("again").status, 200);
  addRule(R"({"path":"/api/status","count":1,"type":"reset"})");
  EXPECT_THROW(request("GET", "/api/status"), Poco::Exception);
  reconnect();
  EXPECT_EQ(request("GET", "/api/status").status, 200);
}

TEST_F(FaultsTest, StallsUntilTheClientGivesUpAndDoesNotDelayTheEnd) {
  addRule(R"({"method":"PUT","type":"stall","afterBytes":1})");
  reconnect();  // the time-out applies to new connections
  session_->setTimeout(Poco::Timespan(0, 200'000));
  EXPECT_THROW(put("stalled"), Poco::TimeoutException);
  const Poco::Timestamp begun;
  server_->stop();
  EXPECT_LT(begun.elapsed(), 10'000'000);
}

TEST_F(FaultsTest, TruncatesAndCorruptsDownloads) {
  put("0123456789");
  addRule(R"({"method":"GET","count":1,"type":"corrupt","afterBytes":4})");
  EXPECT_EQ(call("GET", url_).body, "0123556789");
  addRule(R"({"method":"GET","count":1,"type":"truncate","afterBytes":4})");
  EXPECT_EQ(call("GET", url_).body, "0123");
  reconnect();
  EXPECT_EQ(call("GET", url_).body, "0123456789");
}

TEST_F(FaultsTest, RulesAreListedAndRemoved) {
  addRule(R"({"type":"status","path":"/api/*"})");
  EXPECT_EQ(request("GET", "/api/status").status, 503);
  const Json::Value rules = request("GET", "/faults").json()["faults"];
  ASSERT_EQ(rules.size(), 1U);
  EXPECT_EQ(rules[0]["used"].asInt(), 1);
  EXPECT_EQ(request("DELETE", "/faults/" + rules[0]["id"].asString()).status, 204);
  EXPECT_EQ(request("DELETE", "/faults/77").code(), "no_such_rule");
  EXPECT_EQ(request("GET", "/api/status").status, 200);
  EXPECT_EQ(request("POST", "/faults", R"({"type":"explode"})").code(), "bad_rule");
  EXPECT_EQ(request("DELETE", "/faults").status, 204);
}

}  // namespace zantrio::devservice
