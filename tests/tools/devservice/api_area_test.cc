#include "devservice/api_area.h"

#include "tools/devservice/service_fixture.h"

namespace zantrio::devservice {

using ApiAreaTest = ServiceTest;

TEST_F(ApiAreaTest, TakesAMessageFromItsCreationToItsCompletion) {
  createMessage();
  EXPECT_FALSE(token_.empty());
  const Json::Value message = request("GET", "/api/messages/" + bucket_).json();
  EXPECT_EQ(message["subject"], "Holiday");
  EXPECT_EQ(message["recipients"][0], "ann@example.org");
  EXPECT_EQ(message["state"], "open");
  EXPECT_FALSE(message.isMember("token"));
  EXPECT_EQ(request("GET", "/api/messages").json()["messages"].size(), 1U);

  const std::string url = announce("d", "a.txt");
  announce("", "left out");
  EXPECT_EQ(call("PUT", url, "hello").status, 200);
  const Json::Value files = callMessage("GET", "/files").json()["files"];
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0]["path"], "d/a.txt");
  EXPECT_EQ(files[0]["arrivedSize"].asInt(), 5);
  EXPECT_EQ(files[0]["md5"], "5d41402abc4b2a76b9719d911017c592");
  EXPECT_FALSE(files[1]["arrived"].asBool());
  const Json::Value status = request("GET", "/api/status").json();
  EXPECT_EQ(status["files"].asInt(), 2);
  EXPECT_EQ(status["arrivedFiles"].asInt(), 1);
  EXPECT_EQ(status["arrivedBytes"].asInt(), 5);

  EXPECT_EQ(callMessage("POST", "/complete").code(), "files_missing");
  EXPECT_EQ(callMessage("DELETE", "/files/2").status, 204);
  EXPECT_EQ(callMessage("DELETE", "/files/2").code(), "no_such_file");
  EXPECT_EQ(callMessage("POST", "/complete").json()["state"], "completed");
  EXPECT_EQ(callMessage("POST", "/complete").status, 200);
  EXPECT_EQ(call("PUT", url, "later").code(), "completed");
  EXPECT_EQ(readFile(arrivedFile("d/a.txt")), "hello");
}

TEST_F(ApiAreaTest, RemovesTheFilesOfACancelledMessage) {
  createMessage();
  const std::string url = announce("", "a");
  call("PUT", url, "x");
  EXPECT_EQ(request("DELETE", "/api/messages/" + bucket_).status, 204);
  EXPECT_FALSE(std::filesystem::exists(arrivedFile("a")));
  EXPECT_EQ(call("PUT", url, "x").code(), "cancelled");
  EXPECT_EQ(callMessage("POST", "/complete").code(), "cancelled");
  EXPECT_EQ(callMessage("POST", "/files", R"({"files":[{"name":"a"}]})").code(), "cancelled");
}

TEST_F(ApiAreaTest, LetsOnlyItsOwnPagesChangeAnything) {
  for (const char* origin : {"null", "http://evil.example", "http://127.0.0.1:1"}) {
    const Headers foreign = {{"Origin", origin}};
    EXPECT_EQ(request("POST", "/api/messages", "{}", foreign).code(), "foreign_origin") << origin;
    EXPECT_EQ(request("POST", "/faults", "{}", foreign).status, 403);
    EXPECT_EQ(request("GET", "/api/status", "", foreign).status, 200);
  }
  EXPECT_EQ(request("POST", "/api/messages", "{}", {{"Origin", server_->url()}}).status, 201);
}

TEST_F(ApiAreaTest, AnswersOnlyUnderNamesOfThisMachine) {
  const std::string port = ":" + std::to_string(server_->port());
  for (const std::string name : {"evil.example", "127.0.0.1.evil.example", "localhost.evil.example",
                                 "evil.example:80", "[::2]", "192.168.0.1", "[", "]", ":"}) {
    for (const std::string& host : {name, name + port}) {
      EXPECT_EQ(request("GET", "/api/received", "", {{"Host", host}}).code(), "foreign_host")
          << host;
      EXPECT_EQ(request("GET", "/app", "", {{"Host", host}}).status, 403) << host;
    }
  }
  for (const std::string name : {"localhost", "LocalHost", "127.0.0.1", "[::1]"}) {
    for (const std::string& host : {name, name + port}) {
      EXPECT_EQ(request("GET", "/api/status", "", {{"Host", host}}).status, 200) << host;
    }
  }
}

TEST_F(ApiAreaTest, RefusesABatchWithAHostileName) {
  createMessage();
  for (const char* file :
       {R"({"name":"../x"})", R"({"name":".."})", R"({"name":""})", R"({"name":"a/b"})",
        R"({"name":"x","path":"/etc"})", R"({"name":"x","path":"a/../.."})",
        R"({"name":"x\u0000y"})", R"({"path":"a"})"}) {
    const Response refused =
        callMessage("POST", "/files", std::string(R"({"files":[{"name":"good"},)") + file + "]}");
    EXPECT_EQ(refused.status, 400) << file;
    EXPECT_EQ(refused.code(), "bad_name") << file;
    EXPECT_NE(refused.body.find("cannot be taken"), std::string::npos) << refused.body;
  }
  EXPECT_EQ(callMessage("GET", "/files").json()["files"].size(), 0U);
}

}  // namespace zantrio::devservice
