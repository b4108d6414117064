#include "devservice/fault_area.h"

#include <charconv>

#include "devservice/http_error.h"

namespace zantrio::devservice {

namespace {

int parseId(const std::string& text) {
  int id = 0;
  std::from_chars(text.data(), text.data() + text.size(), id);
  return id;
}

}  // namespace

void CFaultArea::handle(CExchange& exchange) {
  const auto& path = exchange.segments();
  const std::string& method = exchange.method();
  if (path.size() == 1 && method == "POST") {
    return exchange.respond(201, rules_.add(exchange.readJson()));
  }
  if (path.size() == 1 && method == "GET") {
    Json::Value json;
    json["faults"] = rules_.list();
    return exchange.respond(200, json);
  }
  if (path.size() == 1 && method == "DELETE") {
    rules_.clear();
    return exchange.respondEmpty(204);
  }
  if (path.size() == 2 && method == "DELETE") {
    if (!rules_.remove(parseId(path[1]))) {
      throw CHttpError(404, "no_such_rule", "There is no fault rule " + path[1] + ".");
    }
    return exchange.respondEmpty(204);
  }
  throw CHttpError(405, "not_supported", "/faults knows GET, POST and DELETE.");
}

}  // namespace zantrio::devservice
