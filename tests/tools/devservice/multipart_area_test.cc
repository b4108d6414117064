#include "devservice/multipart_area.h"

#include "devservice/md5.h"
#include "tools/devservice/service_fixture.h"

namespace zantrio::devservice {

namespace {

std::string between(const std::string& text, const std::string& begin, const std::string& end) {
  const auto found = text.find(begin);
  if (found == std::string::npos) {
    return {};
  }
  const auto from = found + begin.size();
  return text.substr(from, text.find(end, from) - from);
}

std::string md5Of(const std::string& content) {
  CMd5 md5;
  md5.update(content.data(), content.size());
  return toHex(md5.finish());
}

struct Part {
  int number;
  std::string etag;
};

std::string completion(const std::vector<Part>& parts) {
  std::string xml = R"(<CompleteMultipartUpload xmlns="http://s3.amazonaws.com/doc/2006-03-01/">)"
                    "\n";
  for (const Part& part : parts) {
    xml += "<Part><ETag>" + part.etag + "</ETag><PartNumber>" + std::to_string(part.number) +
           "</PartNumber></Part>\n";
  }
  return xml + "</CompleteMultipartUpload>";
}

}  // namespace

class MultipartAreaTest : public ServiceTest {
 protected:
  MultipartAreaTest() {
    createMessage();
    url_ = announce("d", "large & <odd>.bin");
  }

  void initiate() {
    const Answer answer = request("POST", url_ + "?uploads", "", token());
    ASSERT_EQ(answer.status, 200) << answer.body;
    upload_ = between(answer.body, "<UploadId>", "</UploadId>");
  }
  Answer put(int number, const std::string& content) {
    return request("PUT", partUrl(number), content, token());
  }
  Answer complete(const std::vector<Part>& parts) {
    return request("POST", uploadUrl(), completion(parts), token());
  }
  std::string uploadUrl() const { return url_ + "?uploadId=" + upload_; }
  std::string partUrl(int number) const {
    return url_ + "?partNumber=" + std::to_string(number) + "&uploadId=" + upload_;
  }
  static std::string code(const Answer& answer) {
    return between(answer.body, "<Error><Code>", "</Code>");
  }
  std::size_t uploadFolders() const {
    const std::filesystem::directory_iterator folders(std::filesystem::path(options_.data) /
                                                      "multipart");
    return static_cast<std::size_t>(std::distance(begin(folders), end(folders)));
  }

  std::string url_;
  std::string upload_;
};

TEST_F(MultipartAreaTest, PutsPartsTogetherThatCameInAnyOrderAndTellsTheCompositeChecksum) {
  initiate();
  const std::string first(3'000'000, 'a');
  const std::string second = "the end";
  EXPECT_EQ(put(7, second).response.get("ETag"), '"' + md5Of(second) + '"');
  EXPECT_EQ(put(2, "replaced").status, 200);
  EXPECT_EQ(put(2, first).response.get("ETag"), '"' + md5Of(first) + '"');
  put(9, "not wanted");
  EXPECT_FALSE(std::filesystem::exists(arrivedFile("d/large & <odd>.bin")));

  const Answer answer = complete({{2, '"' + md5Of(first) + '"'}, {7, md5Of(second)}});
  const std::string etag = md5Of(fromHex(md5Of(first)) + fromHex(md5Of(second))) + "-2";
  EXPECT_EQ(answer.status, 200) << answer.body;
  EXPECT_EQ(between(answer.body, "<ETag>", "</ETag>"), "&quot;" + etag + "&quot;");
  EXPECT_EQ(between(answer.body, "<Key>", "</Key>"), "d/large &amp; &lt;odd&gt;.bin");
  EXPECT_EQ(readFile(arrivedFile("d/large & <odd>.bin")), first + second);
  EXPECT_EQ(request("HEAD", url_, "", token()).response.get("ETag"), '"' + etag + '"');
  const Json::Value file = askMessage("GET", "/files").json()["files"][0];
  EXPECT_EQ(file["md5"], md5Of(first + second));
  EXPECT_EQ(code(complete({{2, md5Of(first)}, {7, md5Of(second)}})), "NoSuchUpload");
  EXPECT_EQ(uploadFolders(), 0U);
  EXPECT_EQ(filesOnTheWay(), 0U);
}

TEST_F(MultipartAreaTest, GoesOnAfterARestartWithThePartsThatHadArrived) {
  initiate();
  put(1, "one ");
  put(2, "two");
  options_.port = server_->port();
  restart();
  const Answer listed = request("GET", uploadUrl(), "", token());
  EXPECT_EQ(between(listed.body, "<IsTruncated>", "<"), "false");
  EXPECT_NE(listed.body.find("<PartNumber>2</PartNumber><ETag>&quot;" + md5Of("two") +
                             "&quot;</ETag><Size>3</Size>"),
            std::string::npos)
      << listed.body;
  const Answer page = request("GET", uploadUrl() + "&max-parts=1", "", token());
  EXPECT_EQ(page.body.find("<PartNumber>2"), std::string::npos);
  EXPECT_EQ(between(page.body, "<IsTruncated>", "<"), "true");
  EXPECT_EQ(between(page.body, "<NextPartNumberMarker>", "<"), "1");
  EXPECT_EQ(request("GET", uploadUrl() + "&part-number-marker=1", "", token())
                .body.find("<PartNumber>1<"),
            std::string::npos);
  EXPECT_EQ(complete({{1, md5Of("one ")}, {2, md5Of("two")}}).status, 200);
  restart();
  EXPECT_EQ(request("GET", url_, "", token()).body, "one two");
  EXPECT_EQ(request("HEAD", url_, "", token()).response.get("ETag").back(), '"');
  EXPECT_NE(request("HEAD", url_, "", token()).response.get("ETag").find("-2"), std::string::npos);
}

TEST_F(MultipartAreaTest, RefusesListsThatDoNotMatchThePartsAndKeepsTheUpload) {
  initiate();
  put(1, "one");
  put(2, "two");
  const std::string one = md5Of("one");
  const std::string two = md5Of("two");
  EXPECT_EQ(code(complete({{1, one}, {3, two}})), "InvalidPart");
  EXPECT_EQ(code(complete({{1, two}})), "InvalidPart");
  EXPECT_EQ(code(complete({{2, two}, {1, one}})), "InvalidPartOrder");
  EXPECT_EQ(code(complete({{1, one}, {1, one}})), "InvalidPartOrder");
  EXPECT_EQ(code(complete({})), "MalformedXML");
  for (const char* body : {"", "text", "<A/>", "<CompleteMultipartUpload><Part/>",
                           "<CompleteMultipartUpload><Part/></CompleteMultipartUpload>"}) {
    const Answer answer = request("POST", uploadUrl(), body, token());
    EXPECT_EQ(answer.status, 400) << body;
    EXPECT_EQ(code(answer), "MalformedXML") << body;
  }
  EXPECT_EQ(complete({{1, one}, {2, two}}).status, 200);
}

TEST_F(MultipartAreaTest, RefusesPartsThatBelongNowhere) {
  initiate();
  EXPECT_EQ(code(put(0, "x")), "InvalidArgument");
  EXPECT_EQ(code(put(10'001, "x")), "InvalidArgument");
  EXPECT_EQ(put(10'000, "x").status, 200);
  EXPECT_EQ(request("PUT", partUrl(1), "x").code(), "wrong_token");
  Headers headers = token();
  headers["Content-MD5"] = "AAAAAAAAAAAAAAAAAAAAAA==";
  EXPECT_EQ(request("PUT", partUrl(1), "x", headers).status, 400);
  const std::string other = announce("", "other");
  const Answer foreign = request("PUT", other + "?partNumber=1&uploadId=" + upload_, "x", token());
  EXPECT_EQ(foreign.status, 404);
  EXPECT_EQ(code(foreign), "NoSuchUpload");
  EXPECT_EQ(code(request("PUT", url_ + "?partNumber=1&uploadId=../x", "x", token())),
            "NoSuchUpload");
}

TEST_F(MultipartAreaTest, AbortingForgetsThePartsAndSoDoesCancellingTheMessage) {
  initiate();
  put(1, "x");
  EXPECT_EQ(request("DELETE", uploadUrl(), "", token()).status, 204);
  EXPECT_EQ(code(request("DELETE", uploadUrl(), "", token())), "NoSuchUpload");
  EXPECT_EQ(code(put(1, "x")), "NoSuchUpload");
  EXPECT_EQ(uploadFolders(), 0U);
  initiate();
  put(1, "x");
  EXPECT_EQ(askMessage("DELETE", "").status, 204);
  EXPECT_EQ(uploadFolders(), 0U);
}

TEST_F(MultipartAreaTest, EnforcesASmallestPartAndOffersNothingWhereToldSo) {
  options_.minPartSize = 5;
  restart();
  initiate();
  put(1, "four");
  put(2, "five5");
  put(3, "x");
  EXPECT_EQ(code(complete({{1, md5Of("four")}, {2, md5Of("five5")}})), "EntityTooSmall");
  EXPECT_EQ(complete({{2, md5Of("five5")}, {3, md5Of("x")}}).status, 200);
  options_.multipart = false;
  restart();
  EXPECT_EQ(request("POST", announce("", "b") + "?uploads", "", token()).status, 501);
}

TEST_F(MultipartAreaTest, MeetsTheFailuresThatWereAskedFor) {
  initiate();
  const std::string body = "<Error><Code>InternalError</Code><Message>Try again</Message></Error>";
  request("POST", "/faults",
          R"({"type":"status","method":"POST","status":200,"count":1,"body":")" + body + "\"}");
  put(1, "x");
  EXPECT_EQ(complete({{1, md5Of("x")}}).body, body);
  request("POST", "/faults", R"({"type":"status","query":"partNumber=2&*"})");
  EXPECT_EQ(put(2, "x").status, 503);
  request("POST", "/faults", R"({"type":"etag","method":"PUT","count":1})");
  EXPECT_EQ(put(1, "x").response.get("ETag"), "\"00000000000000000000000000000000\"");
  EXPECT_EQ(complete({{1, md5Of("x")}}).status, 200);
}

}  // namespace zantrio::devservice
