#include "tools/devservice/service_fixture.h"

#include <Poco/Net/HTTPRequest.h>
#include <Poco/StreamCopier.h>
#include <Poco/URI.h>

#include <chrono>
#include <ctime>
#include <fstream>
#include <sstream>
#include <thread>

namespace zantrio::devservice {

namespace fs = std::filesystem;

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

Json::Value Response::json() const {
  Json::Value value;
  std::istringstream(body) >> value;
  return value;
}

ServiceTest::ServiceTest() {
  options_.data = folder_.path() + "/data";
  options_.web = folder_.path() + "/web";
  options_.javascript = folder_.path() + "/javascript";
  folder_.makeFile("web/index.html", "<h1>page</h1>");
  folder_.makeFile("web/js/main.js", "start();");
  folder_.makeFile("javascript/jquery/jquery.min.js", "$");
  folder_.makeFile("secret.txt", "secret");
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

Response ServiceTest::request(const std::string& method, const std::string& path,
                              const std::string& body, const Headers& headers) {
  Poco::Net::HTTPRequest request(method, path, Poco::Net::HTTPMessage::HTTP_1_1);
  for (const auto& [name, value] : headers) {
    request.set(name, value);
  }
  if (method == "PUT" || method == "POST") {
    request.setContentLength64(static_cast<Poco::Int64>(body.size()));
  }
  session_->sendRequest(request) << body;
  Response response;
  std::istream& stream = session_->receiveResponse(response.header);
  response.status = response.header.getStatus();
  Poco::StreamCopier::copyToString(stream, response.body);
  return response;
}

Response ServiceTest::call(const std::string& method, const std::string& path,
                           const std::string& body, Headers headers) {
  headers["X-Zantrio-Token"] = token_;
  return request(method, path, body, headers);
}

void ServiceTest::createMessage(const std::string& description) {
  const Json::Value created = request("POST", "/api/messages", description).json();
  bucket_ = created["bucketId"].asString();
  token_ = created["token"].asString();
  tokenExpires_ = created["tokenExpires"].asInt64();
}

void ServiceTest::waitUntilPast(std::int64_t second) {
  while (std::time(nullptr) <= second) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

std::string ServiceTest::announce(const std::string& folder, const std::string& name) {
  Json::Value body;
  body["files"][0]["name"] = name;
  body["files"][0]["path"] = folder;
  const Response announced = callMessage("POST", "/files", body.toStyledString());
  const std::string url = announced.json()["files"][0]["uploadDetails"]["url"].asString();
  EXPECT_EQ(url.rfind(server_->url(), 0), 0U) << announced.body;
  return url.substr(std::min(url.size(), server_->url().size()));
}

fs::path ServiceTest::arrivedFile(const std::string& path) const {
  return fs::path(options_.data) / "messages" / bucket_ / "files" / path;
}

std::size_t ServiceTest::incomingFiles() const {
  const fs::directory_iterator files(fs::path(options_.data) / "incoming");
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

}  // namespace zantrio::devservice
