#include "devservice/exchange.h"

#include <Poco/Net/HTTPServerSession.h>
#include <Poco/Timespan.h>
#include <Poco/Timestamp.h>
#include <Poco/URI.h>

#include <algorithm>

#include "devservice/body_reader.h"
#include "devservice/http_error.h"

namespace zantrio::devservice {

namespace {

constexpr std::uint64_t kMaxJson = 64ULL * 1024 * 1024;
// The largest rest of a body that is read only to keep a connection.
constexpr std::uint64_t kMaxDiscarded = 1024ULL * 1024;
constexpr std::size_t kLingerBuffer = 256UL * 1024;
const Poco::Timespan kLingerPause(1, 0);
const Poco::Timespan kMaxLinger(5, 0);

std::vector<std::string> decodeSegments(const std::string& rawPath) {
  std::vector<std::string> segments;
  for (std::size_t begin = 1; begin <= rawPath.size();) {
    const std::size_t end = std::min(rawPath.find('/', begin), rawPath.size());
    std::string segment;
    Poco::URI::decode(rawPath.substr(begin, end - begin), segment);
    segments.push_back(std::move(segment));
    begin = end + 1;
  }
  return segments;
}

}  // namespace

CExchange::CExchange(Poco::Net::HTTPServerRequestImpl& theRequest,
                     Poco::Net::HTTPServerResponse& theResponse, Poco::Event& theStopping)
    : request(theRequest), response(theResponse), stopping(theStopping) {
  const std::string& target = request.getURI();
  if (target.empty() || target.front() != '/') {
    throw CHttpError(400, "bad_url", "The URL must begin with \"/\".");
  }
  const auto question = target.find('?');
  try {
    segments_ = decodeSegments(target.substr(0, question));
    Poco::URI::decode(target.substr(0, question), path_);
    if (question != std::string::npos) {
      Poco::URI uri;
      rawQuery_ = target.substr(question + 1);
      uri.setRawQuery(rawQuery_);
      query_ = uri.getQueryParameters();
    }
  } catch (const Poco::Exception&) {
    throw CHttpError(400, "bad_url", "The URL is not correctly percent-encoded.");
  }
}

bool CExchange::hasQuery(const std::string& name) const {
  return std::any_of(query_.begin(), query_.end(),
                     [&](const auto& parameter) { return parameter.first == name; });
}

std::string CExchange::query(const std::string& name) const {
  for (const auto& [key, value] : query_) {
    if (key == name) {
      return value;
    }
  }
  return {};
}

std::string CExchange::baseUrl() const {
  const std::string host = header("Host");
  return "http://" + (host.empty() ? request.serverAddress().toString() : host);
}

std::string CExchange::header(const std::string& name) const {
  return request.get(name, "");
}

Json::Value CExchange::readJson() {
  CBodyReader body(*this, kMaxJson);
  const std::string text = body.readAll();
  if (text.empty()) {
    return {};
  }
  Json::CharReaderBuilder builder;
  builder["rejectDupKeys"] = true;
  builder["failIfExtra"] = true;
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value value;
  std::string errors;
  bool valid = false;
  try {
    valid = reader->parse(text.data(), text.data() + text.size(), &value, &errors);
  } catch (const Json::Exception&) {
    valid = false;  // too deep
  }
  if (!valid) {
    throw CHttpError(400, "bad_json", "The request's body is not valid JSON.");
  }
  return value;
}

void CExchange::respond(int status, const Json::Value& body) {
  discardBody();
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  builder["emitUTF8"] = true;
  const std::string text = Json::writeString(builder, body) + "\n";
  response.setStatusAndReason(static_cast<Poco::Net::HTTPResponse::HTTPStatus>(status));
  response.setContentType("application/json; charset=utf-8");
  response.set("Cache-Control", "no-store");
  response.setContentLength64(static_cast<Poco::Int64>(text.size()));
  response.send().write(text.data(), static_cast<std::streamsize>(text.size())).flush();
}

void CExchange::respondEmpty(int status) {
  discardBody();
  response.setStatusAndReason(static_cast<Poco::Net::HTTPResponse::HTTPStatus>(status));
  response.setContentLength(0);
  response.send();
}

void CExchange::discardBody() {
  if (bodyRead_ || request.getChunkedTransferEncoding() || !request.hasContentLength()) {
    if (request.getChunkedTransferEncoding()) {
      response.setKeepAlive(false);
    }
    return;
  }
  if (request.getContentLength64() > static_cast<Poco::Int64>(kMaxDiscarded)) {
    bodyRead_ = true;
    lingers_ = true;
    response.setKeepAlive(false);
    return;
  }
  CBodyReader body(*this, kMaxDiscarded);
  body.readAll();
}

void CExchange::linger() {
  if (!lingers_) {
    return;
  }
  auto& socket = request.session().socket();
  socket.shutdownSend();
  socket.setReceiveTimeout(kLingerPause);
  std::vector<char> buffer(kLingerBuffer);
  const Poco::Timestamp begun;
  while (!begun.isElapsed(kMaxLinger.totalMicroseconds()) && !stopping.tryWait(0) &&
         socket.receiveBytes(buffer.data(), static_cast<int>(buffer.size())) > 0) {
  }
}

void CExchange::reset() {
  auto& socket = request.session().socket();
  socket.setLinger(true, 0);
  socket.close();
  throw CConnectionLost("reset as asked for");
}

void CExchange::wait(std::uint64_t milliseconds) {
  if (stopping.tryWait(static_cast<long>(milliseconds))) {
    throw CConnectionLost("the service ends");
  }
}

}  // namespace zantrio::devservice
