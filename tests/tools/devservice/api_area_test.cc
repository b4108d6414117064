#include "devservice/api_area.h"

#include "tools/devservice/service_fixture.h"

namespace zantrio::devservice {

using ApiAreaTest = ServiceTest;

TEST_F(ApiAreaTest, CreatesAMessageAndTellsItsTokenOnce) {
  createMessage();
  EXPECT_FALSE(token_.empty());
  const Json::Value message = request("GET", "/api/messages/" + bucket_).json();
  EXPECT_EQ(message["subject"], "Holiday");
  EXPECT_EQ(message["recipients"][0], "ann@example.org");
  EXPECT_EQ(message["state"], "open");
  EXPECT_FALSE(message.isMember("token"));
  EXPECT_EQ(request("GET", "/api/messages").json()["messages"].size(), 1U);
}

TEST_F(ApiAreaTest, RefusesRequestsThatMakeNoSense) {
  EXPECT_EQ(request("POST", "/api/messages", "{").code(), "bad_json");
  EXPECT_EQ(request("POST", "/api/messages", "[]").code(), "bad_request");
  EXPECT_EQ(request("POST", "/api/messages", R"({"subject":5})").code(), "bad_request");
  EXPECT_EQ(request("POST", "/api/messages", R"({"recipients":["ann"]})").code(), "bad_request");
  EXPECT_EQ(request("GET", "/api/messages/none").code(), "no_such_message");
  EXPECT_EQ(request("GET", "/api/nothing").code(), "not_found");
  EXPECT_EQ(request("PUT", "/api/messages", "{}").code(), "not_supported");
  EXPECT_EQ(request("GET", "/nothing").code(), "not_found");
}

TEST_F(ApiAreaTest, LetsOnlyItsOwnPagesChangeAnything) {
  for (const char* origin : {"null", "http://evil.example", "http://127.0.0.1:1"}) {
    const Answer answer = request("POST", "/api/messages", "{}", {{"Origin", origin}});
    EXPECT_EQ(answer.code(), "foreign_origin") << origin;
    EXPECT_EQ(request("POST", "/faults", "{}", {{"Origin", origin}}).status, 403);
    EXPECT_EQ(request("GET", "/api/status", "", {{"Origin", origin}}).status, 200);
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
  const Answer answer = askMessage("POST", "/files", body + "]}");
  ASSERT_EQ(answer.status, 200);
  const Json::Value files = answer.json()["files"];
  ASSERT_EQ(files.size(), 5000U);
  EXPECT_EQ(files[4998]["path"], "ü/b/file 4998");
  EXPECT_EQ(files[4999]["path"], "file 4999");
  EXPECT_EQ(files[4999]["size"].asInt(), 4999);
  EXPECT_EQ(files[4998]["uploadDetails"]["url"],
            server_->url() + "/storage/" + bucket_ + "/%C3%BC/b/file%204998");
  EXPECT_EQ(files[0]["uploadDetails"]["headers"]["X-Zantrio-Token"], token_);
  EXPECT_NE(files[0]["id"], files[1]["id"]);
}

TEST_F(ApiAreaTest, RefusesHostileNamesAndTakesNothingOfTheirBatch) {
  createMessage();
  for (const char* file :
       {R"({"name":"../x"})", R"({"name":".."})", R"({"name":""})", R"({"name":"a/b"})",
        R"({"name":"x","path":"/etc"})", R"({"name":"x","path":"a/../.."})",
        R"({"name":"x\u0000y"})", R"({"path":"a"})"}) {
    const Answer answer =
        askMessage("POST", "/files", std::string(R"({"files":[{"name":"good"},)") + file + "]}");
    EXPECT_EQ(answer.status, 400) << file;
    EXPECT_EQ(answer.code(), "bad_name") << file;
    EXPECT_NE(answer.json()["error"]["message"].asString().find("cannot be taken"),
              std::string::npos);
  }
  EXPECT_EQ(askMessage("GET", "/files").json()["files"].size(), 0U);
}

TEST_F(ApiAreaTest, AnnouncingNeedsTheTokenAndAnOpenMessage) {
  createMessage();
  const std::string message = "/api/messages/" + bucket_;
  const std::string body = R"({"files":[{"name":"a"}]})";
  EXPECT_EQ(request("POST", message + "/files", body).code(), "wrong_token");
  EXPECT_EQ(request("POST", message + "/files", body, {{"X-Zantrio-Token", "no"}}).status, 403);
  EXPECT_EQ(request("POST", message + "/files", R"({"files":[]})", token()).code(), "bad_request");
  EXPECT_EQ(request("DELETE", message).status, 204);
  EXPECT_EQ(request("POST", message + "/files", body, token()).code(), "cancelled");
}

TEST_F(ApiAreaTest, CompletesAMessageOnlyOnceEverythingThatIsWantedHasArrived) {
  createMessage();
  const std::string sent = announce("", "sent");
  announce("", "left out");
  EXPECT_EQ(request("PUT", sent, "x", token()).status, 200);
  EXPECT_EQ(askMessage("POST", "/complete").code(), "files_missing");
  EXPECT_EQ(askMessage("DELETE", "/files/2").status, 204);
  EXPECT_EQ(askMessage("DELETE", "/files/2").code(), "no_such_file");
  EXPECT_EQ(askMessage("POST", "/complete").json()["state"], "completed");
  EXPECT_EQ(askMessage("POST", "/complete").status, 200);
  EXPECT_EQ(request("PUT", sent, "y", token()).code(), "completed");
  EXPECT_EQ(readFile(arrivedFile("sent")), "x");
}

TEST_F(ApiAreaTest, CancellingForgetsWhatArrived) {
  createMessage();
  const std::string url = announce("", "a");
  request("PUT", url, "x", token());
  EXPECT_EQ(request("DELETE", "/api/messages/" + bucket_).status, 204);
  EXPECT_FALSE(std::filesystem::exists(arrivedFile("a")));
  EXPECT_EQ(request("PUT", url, "x", token()).code(), "cancelled");
  EXPECT_EQ(askMessage("POST", "/complete").code(), "cancelled");
}

TEST_F(ApiAreaTest, ListsWhatArrivedWithSizesAndChecksums) {
  createMessage();
  request("PUT", announce("d", "a.txt"), "hello", token());
  announce("", "missing");
  const Json::Value files = askMessage("GET", "/files").json()["files"];
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0]["path"], "d/a.txt");
  EXPECT_EQ(files[0]["arrivedSize"].asInt(), 5);
  EXPECT_EQ(files[0]["md5"], "5d41402abc4b2a76b9719d911017c592");
  EXPECT_FALSE(files[1]["arrived"].asBool());
  const Json::Value status = request("GET", "/api/status").json();
  EXPECT_EQ(status["files"].asInt(), 2);
  EXPECT_EQ(status["arrivedFiles"].asInt(), 1);
  EXPECT_EQ(status["arrivedBytes"].asInt(), 5);
}

}  // namespace zantrio::devservice
