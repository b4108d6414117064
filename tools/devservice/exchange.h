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

// Thrown if a connection ends during a request, so that no response is possible.
class CConnectionLost : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// One request and its response, with the parsed URL.
// Thread: the connection's. Lives as long as the request.
class CExchange {
 public:
  // Throws CHttpError (400) if the URL cannot be decoded.
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
  // The raw query without its question mark.
  const std::string& rawQuery() const { return rawQuery_; }
  // Whether the URL's query contains the name, and its value.
  bool hasQuery(const std::string& name) const;
  std::string query(const std::string& name) const;
  // The service's address as used by this client, "http://127.0.0.1:8080".
  std::string baseUrl() const;

  // A header of the request; empty if it is missing.
  std::string header(const std::string& name) const;
  // The body as JSON; null if it is empty. Throws CHttpError (400, 413).
  Json::Value readJson();

  void respond(int status, const Json::Value& body);
  void respondEmpty(int status);
  // Reads and drops the rest of the body, or ends the connection after this response if the rest is
  // too large.
  void discardBody();
  // Called after the response: reads for a while what a refused client still sends, so that it sees
  // the response instead of a reset.
  void linger();
  // Ends the connection at once with a TCP reset.
  [[noreturn]] void reset();
  // Waits; throws CConnectionLost if the service ends meanwhile.
  void wait(std::uint64_t milliseconds);

  // Called by the reader of the body.
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
