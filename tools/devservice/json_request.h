#pragma once

#include <json/json.h>

#include <cstdint>
#include <string>

#include "devservice/exchange.h"

namespace zantrio::devservice {

// Reading the requests of the JSON API; what makes no sense is refused with CHttpError.

[[noreturn]] void refuse(const std::string& why);  // 400
// The method must be the one that the address knows (405).
void need(const CExchange& exchange, const char* method);
Json::Value readObject(CExchange& exchange);
// The text or number of a key that may be missing or null.
std::string textOf(const Json::Value& object, const char* key, const char* otherwise = "");
std::uint64_t numberOf(const Json::Value& object, const char* key, std::uint64_t otherwise);

}  // namespace zantrio::devservice
