#include "devservice/json_request.h"

#include "devservice/http_error.h"

namespace zantrio::devservice {

void refuse(const std::string& why) {
  throw CHttpError(400, "bad_request", why);
}

void requireMethod(const CExchange& exchange, const char* method) {
  if (exchange.method() != method) {
    throw CHttpError(405, "not_supported",
                     exchange.method() + " is not possible here, only " + method + ".");
  }
}

Json::Value readObject(CExchange& exchange) {
  Json::Value body = exchange.readJson();
  if (!body.isObject()) {
    refuse("The request's body must be a JSON object.");
  }
  return body;
}

std::string textOf(const Json::Value& object, const char* key, const char* fallback) {
  const Json::Value& value = object[key];
  if (value.isNull()) {
    return fallback;
  }
  if (!value.isString()) {
    refuse(std::string("\"") + key + "\" must be a text.");
  }
  return value.asString();
}

std::uint64_t numberOf(const Json::Value& object, const char* key, std::uint64_t fallback) {
  const Json::Value& value = object[key];
  if (value.isNull()) {
    return fallback;
  }
  if (!value.isUInt64()) {
    refuse(std::string("\"") + key + "\" must be a whole number, not negative.");
  }
  return value.asUInt64();
}

}  // namespace zantrio::devservice
