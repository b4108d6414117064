#pragma once

#include <json/json.h>

#include <cstdint>
#include <string>

#include "devservice/exchange.h"

namespace zantrio::devservice {

// Reads the requests of the JSON API; invalid ones are refused with CHttpError.

[[noreturn]] void refuse(const std::string& why);  // 400
// Throws (405) unless the request has this method.
void requireMethod(const CExchange& exchange, const char* method);
Json::Value readObject(CExchange& exchange);
// The text or number of a key; `fallback` if it is missing or null.
std::string textOf(const Json::Value& object, const char* key, const char* fallback = "");
std::uint64_t numberOf(const Json::Value& object, const char* key, std::uint64_t fallback);

}  // namespace zantrio::devservice
