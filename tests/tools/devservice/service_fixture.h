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

struct Answer {
  int status = 0;
  Poco::Net::HTTPResponse response;
  std::string body;

  Json::Value json() const;
  // The code of a failure.
  std::string code() const;
};

using Headers = std::map<std::string, std::string>;

// A running service with a small web folder, and a client for it.
class ServiceTest : public testing::Test {
 protected:
  ServiceTest();

  void restart();
  Answer request(const std::string& method, const std::string& path, const std::string& body = "",
                 const Headers& headers = {});

  // Creates a message and keeps its bucket and token for what follows.
  void createMessage(
      const std::string& description = R"({"subject":"Holiday","recipients":["ann@example.org"]})");
  // Waits for the end of that second since 1970.
  static void waitUntilPast(std::int64_t second);
  // Announces a file; gives the path of its upload URL.
  std::string announce(const std::string& folder, const std::string& name);
  Headers token() const { return {{"X-Zantrio-Token", token_}}; }
  // What this path of the message's in the API answers, asked for or changed.
  Answer askMessage(const std::string& method, const std::string& rest,
                    const std::string& body = "") {
    return request(method, "/api/messages/" + bucket_ + rest, body, token());
  }
  // Sends the content over a connection of its own; may be called from any thread.
  void putAlone(const std::string& url, const std::string& content) const;
  std::filesystem::path arrivedFile(const std::string& path) const;
  std::size_t filesOnTheWay() const;

  const test::TemporaryFolder folder_;
  Options options_;
  std::unique_ptr<CDevServer> server_;
  std::unique_ptr<Poco::Net::HTTPClientSession> session_;
  std::string bucket_;
  std::string token_;
  std::int64_t expires_ = 0;
  std::int64_t tokenExpires_ = 0;
};

}  // namespace zantrio::devservice
