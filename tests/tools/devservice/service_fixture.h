#pragma once

#include <Poco/Net/HTTPClientSession.h>
#include <Poco/Net/HTTPResponse.h>
#include <gtest/gtest.h>
#include <json/json.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "devservice/dev_server.h"
#include "support/temporary_folder.h"

namespace zantrio::devservice {

std::string readFile(const std::filesystem::path& path);

struct Response {
  int status = 0;
  Poco::Net::HTTPResponse header;
  std::string body;

  Json::Value json() const;
  // The code of a failure.
  std::string code() const { return json()["error"]["code"].asString(); }
};

using Headers = std::map<std::string, std::string>;

// A running service with a small web folder, and a client for it.
class ServiceTest : public testing::Test {
 protected:
  ServiceTest();

  void restart();
  Response request(const std::string& method, const std::string& path, const std::string& body = "",
                   const Headers& headers = {});
  // The same with the message's token.
  Response call(const std::string& method, const std::string& path, const std::string& body = "",
                Headers headers = {});
  Response callMessage(const std::string& method, const std::string& rest,
                       const std::string& body = "") {
    return call(method, "/api/messages/" + bucket_ + rest, body);
  }

  // Creates a message and keeps its bucket and token.
  void createMessage(
      const std::string& description = R"({"subject":"Holiday","recipients":["ann@example.org"]})");
  // Waits until that second since 1970 has passed.
  static void waitUntilPast(std::int64_t second);
  // Announces a file; returns the path of its upload URL.
  std::string announce(const std::string& folder, const std::string& name);
  std::filesystem::path arrivedFile(const std::string& path) const;
  std::size_t incomingFiles() const;

  const test::TemporaryFolder folder_;
  Options options_;
  std::unique_ptr<CDevServer> server_;
  std::unique_ptr<Poco::Net::HTTPClientSession> session_;
  std::string bucket_;
  std::string token_;
  std::int64_t tokenExpires_ = 0;
};

}  // namespace zantrio::devservice
