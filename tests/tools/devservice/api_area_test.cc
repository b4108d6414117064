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

TEST_F(ApiAreaTest, RefusesInvalidRequests) {
  createMessage();
  const std::string files = "/api/messages/" + bucket_ + "/files";
  struct Case {
    const char* method;
    std::string path;
    const char* body;
    const char* code;
  };
  for (const auto& [method, path, body, code] : std::initializer_list<Case>{
           {"POST", "/api/messages", "{", "bad_json"},
           {"POST", "/api/messages", "[]", "bad_request"},
           {"POST", "/api/messages", R"({"subject":5})", "bad_request"},
           {"POST", "/api/messages", R"({"recipients":["ann"]})", "bad_request"},
           {"PUT", "/api/messages", "{}", "not_supported"},
           {"GET", "/api/messages/none", "", "no_such_message"},
           {"GET", "/api/nothing", "", "not_found"},
           {"GET", "/nothing", "", "not_found"},
           {"POST", files, R"({"files":[]})", "bad_request"}}) {
    EXPECT_EQ(call(method, path, body).code(), code) << path << body;
  }
  const std::string body = R"({"files":[{"name":"a"}]})";
  EXPECT_EQ(request("POST", files, body).code(), "wrong_token");
  EXPECT_EQ(request("POST", files, body, {{"X-Zantrio-Token", "no"}}).status, 403);
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

TEST_F(ApiAreaTest, AnnouncesThousandsOfFilesAtOnceInTheirOrder) {
  createMessage();
  std::string body = R"({"files":[)";
  for (int i = 0; i < 5000; ++i) {
    body += (i > 0 ? "," : "") + std::string(R"({"name":"file )") + std::to_string(i) +
            R"(","path":)" + (i % 2 == 0 ? R"("ü/b")" : "null") + R"(,"size":)" +
            std::to_string(i) + "}";
  }
  const Json::Value files = callMessage("POST", "/files", body + "]}").json()["files"];
  ASSERT_EQ(files.size(), 5000U);
  EXPECT_EQ(files[4998]["path"], "ü/b/file 4998");
  EXPECT_EQ(files[4999]["path"], "file 4999");
  EXPECT_EQ(files[4999]["size"].asInt(), 4999);
  EXPECT_EQ(files[4998]["uploadDetails"]["url"],
            server_->url() + "/storage/" + bucket_ + "/%C3%BC/b/file%204998");
  EXPECT_EQ(files[0]["uploadDetails"]["headers"]["X-Zantrio-Token"], token_);
  EXPECT_NE(files[0]["id"], files[1]["id"]);
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
