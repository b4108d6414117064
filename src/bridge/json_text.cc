#include "bridge/json_text.h"

#include <json/reader.h>
#include <json/writer.h>

namespace zantrio {
namespace {

Json::StreamWriterBuilder makeWriterBuilder() {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  builder["commentStyle"] = "None";
  return builder;
}

}  // namespace

bool parseJson(const std::string& text, Json::Value& value) {
// The library's newer reader would also take numbers with a plus sign.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  constexpr bool kCollectComments = false;
  return Json::Reader().parse(text, value, kCollectComments);
#pragma GCC diagnostic pop
}

std::string writeCompactJson(const Json::Value& value) {
  static const Json::StreamWriterBuilder builder = makeWriterBuilder();
  return Json::writeString(builder, value) + "\n";
}

}  // namespace zantrio
