#include "devservice/received_area.h"

#include <algorithm>
#include <charconv>
#include <ctime>

#include "devservice/http_error.h"
#include "devservice/json_request.h"
#include "devservice/names.h"

namespace zantrio::devservice {

namespace {

constexpr std::size_t kMaxBatch = 20'000;
constexpr std::uint64_t kWeek = 7ULL * 24 * 3600;

std::uint64_t now() {
  return static_cast<std::uint64_t>(std::time(nullptr));
}

// With the keys of the client's download bridge.
Json::Value describe(const MessageFile& file) {
  Json::Value json;
  json["id"] = file.id;
  json["path"] = file.path;
  json["size"] = Json::UInt64(file.arrivedSize);
  json["modified"] = Json::Int64(file.modified);
  json["md5Digest"] = file.md5;
  return json;
}

std::size_t queryNumber(const CExchange& exchange, const char* name, std::size_t fallback) {
  const std::string text = exchange.query(name);
  std::size_t number = fallback;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (!text.empty() && (error != std::errc() || end != text.data() + text.size())) {
    refuse(std::string("\"") + name + "\" must be a whole number, not negative.");
  }
  return number;
}

std::vector<std::string> parseIds(const Json::Value& list) {
  if (!list.isArray() || list.empty() || list.size() > kMaxBatch) {
    refuse("\"files\" must be an array of 1 to " + std::to_string(kMaxBatch) + " ids.");
  }
  std::vector<std::string> ids;
  ids.reserve(list.size());
  for (const Json::Value& id : list) {
    if (!id.isString()) {
      refuse("Every id must be a text.");
    }
    ids.push_back(id.asString());
  }
  return ids;
}

}  // namespace

// /api/received
// /api/received/<bucket>
// /api/received/<bucket>/files?after=ID&count=N
// /api/received/<bucket>/downloads
void CReceivedArea::handle(CExchange& exchange) {
  const auto& path = exchange.segments();
  if (path.size() == 2) {
    return list(exchange);
  }
  if (path.size() == 3) {
    requireMethod(exchange, "GET");
    return exchange.respond(200, messages_.describe(path[2]));
  }
  if (path.size() == 4 && path[3] == "files") {
    return files(exchange, path[2]);
  }
  if (path.size() == 4 && path[3] == "downloads") {
    return downloads(exchange, path[2]);
  }
  throw CHttpError(404, "not_found", "There is nothing at " + printable(exchange.path()) + ".");
}

void CReceivedArea::list(CExchange& exchange) {
  requireMethod(exchange, "GET");
  Json::Value json;
  json["messages"] = messages_.list();
  exchange.respond(200, json);
}

void CReceivedArea::files(CExchange& exchange, const std::string& bucketId) {
  requireMethod(exchange, "GET");
  const std::size_t after = queryNumber(exchange, "after", 0);
  const std::size_t count = std::min(queryNumber(exchange, "count", kMaxBatch), kMaxBatch);
  Json::Value json;
  json["files"] = Json::arrayValue;
  const auto listed = messages_.files(bucketId, after, count);
  for (const MessageFile& file : listed) {
    json["files"].append(describe(file));
  }
  json["next"] =
      listed.size() == count && count > 0 ? Json::Value(listed.back().id) : Json::Value();
  exchange.respond(200, json);
}

void CReceivedArea::downloads(CExchange& exchange, const std::string& bucketId) {
  requireMethod(exchange, "POST");
  const auto ids = parseIds(readObject(exchange)["files"]);
  Json::Value json;
  json["files"] = Json::arrayValue;
  for (const MessageFile& file : messages_.files(bucketId, ids)) {
    Json::Value described = describe(file);
    described["downloadDetails"] = downloadDetails(exchange, bucketId, file.path);
    json["files"].append(std::move(described));
  }
  const std::uint64_t expires = messages_.expires(bucketId);
  const std::uint64_t tokenExpires = expires == 0 ? now() + kWeek : expires;
  json["token"] = signer_.makeToken(bucketId, tokenExpires);
  json["tokenExpires"] = Json::UInt64(tokenExpires);
  exchange.respond(200, json);
}

Json::Value CReceivedArea::downloadDetails(const CExchange& exchange, const std::string& bucketId,
                                           const std::string& path) const {
  const std::uint64_t expires = now() + urlLifetime_;
  Json::Value details;
  details["url"] = exchange.baseUrl() + "/storage/" + bucketId + "/" + encodePath(path) +
                   "?expires=" + std::to_string(expires) +
                   "&signature=" + signer_.sign(bucketId, path, expires);
  details["expires"] = Json::UInt64(expires);
  return details;
}

}  // namespace zantrio::devservice
