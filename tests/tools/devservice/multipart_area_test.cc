#include "devservice/multipart_area.h"

#include "devservice/md5.h"
#include "tools/devservice/service_fixture.h"

namespace zantrio::devservice {

namespace {

using Part = std::pair<int, std::string>;  // number and ETag

std::string between(const std::string& text, const std::string& begin, const std::string& end) {
  const auto found = text.find(begin);
  const auto from = found + begin.size();
  return found == std::string::npos ? "" : text.substr(from, text.find(end, from) - from);
}

std::string md5Of(const std::string& content) {
  CMd5 md5;
  md5.update(content.data(), content.size());
  return toHex(md5.finish());
}

std::string code(const Response& response) {
  return between(response.body, "<Error><Code>", "</Code>");
}

}  // namespace

class MultipartAreaTest : public ServiceTest {
 protected:
  MultipartAreaTest() {
    createMessage();
    url_ = announce("d", "large & <odd>.bin");
    initiate();
  }

  void initiate() {
    const Response initiated = call("POST", url_ + "?uploads");
    upload_ = between(initiated.body, "<UploadId>", "</UploadId>");
    EXPECT_NE(upload_, "") << initiated.body;
  }
  Response put(int number, const std::string& content) {
    return call("PUT", partUrl(number), content);
  }
  Response complete(const std::vector<Part>& parts) {
    std::string xml =
        R"(<CompleteMultipartUpload xmlns="http://s3.amazonaws.com/doc/2006-03-01/">)";
    for (const auto& [number, etag] : parts) {
      xml += "\n<Part><ETag>" + etag + "</ETag><PartNumber>" + std::to_string(number) +
             "</PartNumber></Part>";
    }
    return call("POST", uploadUrl(), xml + "\n</CompleteMultipartUpload>");
  }
  std::string uploadUrl() const { return url_ + "?uploadId=" + upload_; }
  std::string partUrl(int number) const {
    return url_ + "?partNumber=" + std::to_string(number) + "&uploadId=" + upload_;
  }
  bool hasUploadFolders() const {
    return !std::filesystem::is_empty(std::filesystem::path(options_.data) / "multipart");
  }

  std::string url_;
  std::string upload_;
};

TEST_F(MultipartAreaTest, ContinuesAfterARestartWithTheReceivedParts) {
  put(1, "one ");
  put(2, "two");
  options_.port = server_->port();
  restart();
  const std::string list = call("GET", uploadUrl()).body;
  EXPECT_EQ(between(list, "<IsTruncated>", "<"), "false");
  EXPECT_EQ(between(list, "<PartNumber>2</PartNumber>", "</Part>"),
            "<ETag>&quot;" + md5Of("two") + "&quot;</ETag><Size>3</Size>");
  const std::string page = call("GET", uploadUrl() + "&max-parts=1").body;
  EXPECT_EQ(page.find("<PartNumber>2"), std::string::npos);
  EXPECT_EQ(between(page, "<IsTruncated>", "<"), "true");
  EXPECT_EQ(between(page, "<NextPartNumberMarker>", "<"), "1");
  EXPECT_EQ(call("GET", uploadUrl() + "&part-number-marker=1").body.find("<PartNumber>1<"),
            std::string::npos);
  EXPECT_EQ(complete({{1, md5Of("one ")}, {2, md5Of("two")}}).status, 200);
  restart();
  EXPECT_EQ(call("GET", url_).body, "one two");
  const std::string etag = md5Of(fromHex(md5Of("one ")) + fromHex(md5Of("two"))) + "-2";
  EXPECT_EQ(call("HEAD", url_).header.get("ETag"), '"' + etag + '"');
  EXPECT_FALSE(hasUploadFolders());
}

TEST_F(MultipartAreaTest, RefusesListsThatDoNotMatchThePartsAndKeepsTheUpload) {
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
    const Response refused = call("POST", uploadUrl(), body);
    EXPECT_EQ(refused.status, 400) << body;
    EXPECT_EQ(code(refused), "MalformedXML") << body;
  }
  EXPECT_EQ(complete({{1, one}, {2, two}}).status, 200);
}

TEST_F(MultipartAreaTest, RemovesThePartsOfAbortedUploadsAndCancelledMessages) {
  put(1, "x");
  EXPECT_EQ(call("DELETE", uploadUrl()).status, 204);
  EXPECT_EQ(code(call("DELETE", uploadUrl())), "NoSuchUpload");
  EXPECT_EQ(code(put(1, "x")), "NoSuchUpload");
  EXPECT_FALSE(hasUploadFolders());
  initiate();
  put(1, "x");
  EXPECT_EQ(callMessage("DELETE", "").status, 204);
  EXPECT_FALSE(hasUploadFolders());
}

}  // namespace zantrio::devservice
