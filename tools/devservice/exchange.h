#pragma once

#include <Poco/Event.h>
#include <Poco/Net/HTTPServerRequestImpl.h>
#include <Poco/Net/HTTPServerResponse.h>
#include <json/json.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "devservice/fault_rules.h"

namespace zantrio::devservice {

// Thrown when a connection ends in the middle of a request: there is nobody left to answer.
class CConnectionLost : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// One request and its answer, with what was parsed of it once for everyone.
// Thread: the connection's. Lives as long as the request.
class CExchange {
 public:
  // Throws CHttpError (400) when the URL cannot be decoded.
  CExchange(Poco::Net::HTTPServerRequestImpl& request, Poco::Net::HTTPServerResponse& response,
            Poco::Event& stopping);

  Poco::Net::HTTPServerRequestImpl& request;
  Poco::Net::HTTPServerResponse& response;
  Poco::Event& stopping;  // set when the service ends; ends every wait
  Fault fault;

  const std::string& method() const { return request.getMethod(); }
  // The path's decoded segments: "/api/a%20b" gives "api", "a b".
  const std::vector<std::string>& segments() const { return segments_; }
  // The decoded path, which fault rules match.
  const std::string& path() const { return path_; }
  // The query as it came, without its question mark.
  const std::string& rawQuery() const { return rawQuery_; }
  // Whether the URL's query has that name, and its value.
  bool hasQuery(const std::string& name) const;
  std::string query(const std::string& name) const;
  // The service's address as this client calls it, "http://127.0.0.1:8080".
  std::string baseUrl() const;

  // The request's header, empty when it is missing.
  std::string header(const std::string& name) const;
  // The body as JSON; null when it is empty. Throws CHttpError (400, 413).
  Json::Value readJson();

  void answer(int status, const Json::Value& body);
  void answerEmpty(int status);
  // Throws away what is left of the body, or ends the connection after this answer when that is
  // too much to wait for.
  void discardBody();
  // To be called after the answer: takes in what a client that was refused still sends, for a
  // while, so that it gets to see the answer instead of a reset.
  void linger();
  // Ends the connection at once with a TCP reset.
  [[noreturn]] void reset();
  // Waits; throws CConnectionLost when the service ends meanwhile.
  void wait(std::uint64_t milliseconds);

  // To be told by who reads the body.
  void bodyWasRead() { bodyRead_ = true; }

 private:
  std::vector<std::string> segments_;
  std::string path_;
  std::string rawQuery_;
  std::vector<std::pair<std::string, std::string>> query_;
  bool bodyRead_ = false;
  bool lingers_ = false;
};

}  // namespace zantrio::devservice
