#include "devservice/api_area.h"

#include "devservice/http_error.h"
#include "devservice/json_request.h"

namespace zantrio::devservice {

namespace {

constexpr std::uint64_t kWeek = 7ULL * 24 * 3600;
constexpr std::uint64_t kTwoWeeks = 2 * kWeek;
constexpr const char* kSender = "You <you@localhost>";
constexpr Json::ArrayIndex kMaxBatch = 20000;

Json::Value recipients(const Json::Value& body) {
  const Json::Value& list = body["recipients"];
  if (list.isNull()) {
    return Json::arrayValue;
  }
  if (!list.isArray()) {
    refuse("\"recipients\" must be an array of e-mail addresses.");
  }
  for (const Json::Value& recipient : list) {
    if (!recipient.isString() || recipient.asString().find('@') == std::string::npos) {
      refuse("Every recipient must be an e-mail address.");
    }
  }
  return list;
}

// A name from a file system is one component; the folder may have several.
Announcement parseAnnouncement(const Json::Value& file) {
  if (!file.isObject()) {
    refuse("Every element of \"files\" must be an object.");
  }
  const std::string name = textOf(file, "name");
  const std::string folder = textOf(file, "path");
  if (name.find('/') != std::string::npos) {
    throw CHttpError(
        400, "bad_name",
        "The file \"" + printable(name) + "\" cannot be taken: its name contains a \"/\".");
  }
  Announcement announcement;
  announcement.path = folder.empty() ? name : folder + "/" + name;
  announcement.size = numberOf(file, "size", 0);
  const Json::Value& modified = file["modified"];
  announcement.modified = modified.isInt64() ? modified.asInt64() : 0;
  if (const std::string why = pathProblem(announcement.path); !why.empty()) {
    throw CHttpError(
        400, "bad_name",
        "The file \"" + printable(announcement.path) + "\" cannot be taken: " + why + ".");
  }
  return announcement;
}

Json::Value uploadDetails(const CExchange& exchange, const std::string& bucketId,
                          const std::string& token, const MessageFile& file) {
  Json::Value details;
  details["url"] = exchange.baseUrl() + "/storage/" + bucketId + "/" + encodePath(file.path);
  details["headers"]["X-Zantrio-Token"] = token;
  return details;
}

}  // namespace

// /api/status
// /api/messages
// /api/messages/<bucket>
// /api/messages/<bucket>/files, .../files/<id>
// /api/messages/<bucket>/complete
// /api/messages/<bucket>/progress
void CApiArea::handle(CExchange& exchange) {
  const auto& path = exchange.segments();
  if (path.size() == 2 && path[1] == "status") {
    return status(exchange);
  }
  if (path.size() == 2 && path[1] == "messages") {
    return messages(exchange);
  }
  if (path.size() == 3 && path[1] == "messages") {
    return message(exchange, path[2]);
  }
  if (path.size() == 4 && path[1] == "messages" && path[3] == "files") {
    return files(exchange, path[2]);
  }
  if (path.size() == 5 && path[1] == "messages" && path[3] == "files") {
    requireMethod(exchange, "DELETE");
    store_.removeFile(path[2], path[4]);
    return exchange.respondEmpty(204);
  }
  if (path.size() == 4 && path[1] == "messages" && path[3] == "complete") {
    requireMethod(exchange, "POST");
    const Json::Value completed = store_.complete(path[2]);
    uploads_.removeAllOf(path[2]);
    return exchange.respond(200, completed);
  }
  if (path.size() == 4 && path[1] == "messages" && path[3] == "progress") {
    return progress(exchange, path[2]);
  }
  throw CHttpError(404, "not_found", "There is nothing at " + printable(exchange.path()) + ".");
}

void CApiArea::status(CExchange& exchange) {
  requireMethod(exchange, "GET");
  std::size_t count = 0;
  const CMessage::Totals totals = store_.totals(count);
  Json::Value json;
  json["service"] = "zantrio-devservice";
  json["messages"] = Json::UInt64(count);
  json["files"] = Json::UInt64(totals.files);
  json["bytes"] = Json::UInt64(totals.bytes);
  json["arrivedFiles"] = Json::UInt64(totals.arrivedFiles);
  json["arrivedBytes"] = Json::UInt64(totals.arrivedBytes);
  exchange.respond(200, json);
}

void CApiArea::messages(CExchange& exchange) {
  if (exchange.method() == "GET") {
    Json::Value json;
    json["messages"] = store_.list();
    return exchange.respond(200, json);
  }
  requireMethod(exchange, "POST");
  createMessage(exchange);
}

void CApiArea::createMessage(CExchange& exchange) {
  const Json::Value body = readObject(exchange);
  const CMessage message =
      store_.create({textOf(body, "subject"), textOf(body, "text"), textOf(body, "sender", kSender),
                     recipients(body), numberOf(body, "tokenLifetimeSeconds", kWeek),
                     numberOf(body, "lifetimeSeconds", kTwoWeeks)});
  Json::Value json = toJson(message);
  json["token"] = message.token;
  exchange.respond(201, json);
}

void CApiArea::message(CExchange& exchange, const std::string& bucketId) {
  if (exchange.method() == "DELETE") {
    store_.cancel(bucketId);
    uploads_.removeAllOf(bucketId);
    return exchange.respondEmpty(204);
  }
  requireMethod(exchange, "GET");
  exchange.respond(200, store_.describe(bucketId));
}

void CApiArea::files(CExchange& exchange, const std::string& bucketId) {
  if (exchange.method() == "POST") {
    return announceFiles(exchange, bucketId);
  }
  requireMethod(exchange, "GET");
  Json::Value json;
  json["files"] = Json::arrayValue;
  for (const MessageFile& file : store_.files(bucketId)) {
    json["files"].append(toJson(file));
  }
  exchange.respond(200, json);
}

void CApiArea::announceFiles(CExchange& exchange, const std::string& bucketId) {
  const Json::Value body = readObject(exchange);
  const Json::Value& list = body["files"];
  if (!list.isArray() || list.empty() || list.size() > kMaxBatch) {
    refuse("\"files\" must be an array of 1 to " + std::to_string(kMaxBatch) + " files.");
  }
  const std::string token = exchange.header("X-Zantrio-Token");
  store_.authorize(bucketId, token, true);
  std::vector<Announcement> announcements;
  announcements.reserve(list.size());
  for (const Json::Value& file : list) {
    announcements.push_back(parseAnnouncement(file));
  }
  Json::Value json;
  json["files"] = Json::arrayValue;
  for (const MessageFile& file : store_.announce(bucketId, announcements)) {
    Json::Value described = toJson(file);
    described["uploadDetails"] = uploadDetails(exchange, bucketId, token, file);
    json["files"].append(std::move(described));
  }
  exchange.respond(200, json);
}

// A token of the message's sender or of a recipient.
void CApiArea::progress(CExchange& exchange, const std::string& bucketId) {
  if (exchange.method() == "GET") {
    return exchange.respond(200, reports_.describe(bucketId, exchange.query("group")));
  }
  requireMethod(exchange, "POST");
  const std::string token = exchange.header("X-Zantrio-Token");
  if (!signer_.isToken(bucketId, token)) {
    store_.authorize(bucketId, token, false);
  }
  reports_.add(bucketId, readObject(exchange));
  exchange.respondEmpty(204);
}

}  // namespace zantrio::devservice
