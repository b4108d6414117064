#include "tools/devservice/service_fixture.h"

#include <Poco/Net/HTTPRequest.h>
#include <Poco/StreamCopier.h>
#include <Poco/URI.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace zantrio::devservice {

namespace fs = std::filesystem;

CTestFolder::CTestFolder() {
  std::string name = (fs::temp_directory_path() / "zantrio-devservice-XXXXXX").string();
  path_ = ::mkdtemp(name.data());
}

CTestFolder::~CTestFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

void writeFile(const fs::path& path, const std::string& content) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << content;
}

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

Json::Value Answer::json() const {
  Json::Value value;
  std::istringstream(body) >> value;
  return value;
}

std::string Answer::code() const {
  return json()["error"]["code"].asString();
}

ServiceTest::ServiceTest() {
  options_.data = folder_.path() / "data";
  options_.web = folder_.path() / "web";
  options_.javascript = folder_.path() / "javascript";
  writeFile(folder_.path() / "web/index.html", "<h1>page</h1>");
  writeFile(folder_.path() / "web/js/main.js", "start();");
  writeFile(folder_.path() / "javascript/jquery/jquery.min.js", "$");
  writeFile(folder_.path() / "secret.txt", "secret");
  restart();
}

void ServiceTest::restart() {
  session_.reset();
  server_.reset();
  server_ = std::make_unique<CDevServer>(options_);
  session_ = std::make_unique<Poco::Net::HTTPClientSession>("127.0.0.1", server_->port());
  session_->setKeepAlive(true);
  session_->setTimeout(Poco::Timespan(30, 0));
}

Answer ServiceTest::request(const std::string& method, const std::string& path,
                            const std::string& body, const Headers& headers) {
  Poco::Net::HTTPRequest request(method, path, Poco::Net::HTTPMessage::HTTP_1_1);
  for (const auto& [name, value] : headers) {
    request.set(name, value);
  }
  if (method == "PUT" || method == "POST") {
    request.setContentLength64(static_cast<Poco::Int64>(body.size()));
  }
  session_->sendRequest(request) << body;
  Answer answer;
  std::istream& stream = session_->receiveResponse(answer.response);
  answer.status = answer.response.getStatus();
  Poco::StreamCopier::copyToString(stream, answer.body);
  return answer;
}

Answer ServiceTest::requestJson(const std::string& method, const std::string& path,
                                const Json::Value& body, const Headers& headers) {
  return request(method, path, body.toStyledString(), headers);
}

void ServiceTest::createMessage() {
  Json::Value message;
  message["subject"] = "Holiday";
  message["recipients"].append("ann@example.org");
  const Json::Value created = requestJson("POST", "/api/messages", message).json();
  bucket_ = created["bucketId"].asString();
  token_ = created["token"].asString();
}

std::string ServiceTest::announce(const std::string& folder, const std::string& name) {
  Json::Value file;
  file["name"] = name;
  file["path"] = folder;
  Json::Value body;
  body["files"].append(file);
  const Answer answer = requestJson("POST", "/api/messages/" + bucket_ + "/files", body, token());
  const std::string url = answer.json()["files"][0]["uploadDetails"]["url"].asString();
  EXPECT_EQ(url.rfind(server_->url(), 0), 0U) << answer.body;
  return url.substr(std::min(url.size(), server_->url().size()));
}

fs::path ServiceTest::arrivedFile(const std::string& path) const {
  return fs::path(options_.data) / "messages" / bucket_ / "files" / path;
}

std::size_t ServiceTest::filesOnTheWay() const {
  const fs::directory_iterator files(fs::path(options_.data) / "incoming");
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

}  // namespace zantrio::devservice
