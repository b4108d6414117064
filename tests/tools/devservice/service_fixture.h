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

namespace zantrio::devservice {

// A folder for one test, removed with everything in it.
class CTestFolder {
 public:
  CTestFolder();
  ~CTestFolder();
  CTestFolder(const CTestFolder&) = delete;
  CTestFolder& operator=(const CTestFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

void writeFile(const std::filesystem::path& path, const std::string& content);
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
  Answer requestJson(const std::string& method, const std::string& path, const Json::Value& body,
                     const Headers& headers = {});

  // Creates a message and keeps its bucket and token for what follows.
  void createMessage();
  // Announces a file; gives the path of its upload URL.
  std::string announce(const std::string& folder, const std::string& name);
  Headers token() const { return {{"X-Zantrio-Token", token_}}; }
  std::filesystem::path arrivedFile(const std::string& path) const;
  std::size_t filesOnTheWay() const;

  CTestFolder folder_;
  Options options_;
  std::unique_ptr<CDevServer> server_;
  std::unique_ptr<Poco::Net::HTTPClientSession> session_;
  std::string bucket_;
  std::string token_;
};

}  // namespace zantrio::devservice
