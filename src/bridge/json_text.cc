#include "bridge/json_text.h"

#include <json/reader.h>
#include <json/writer.h>

#include <memory>

namespace zantrio {
namespace {

Json::CharReaderBuilder makeReaderBuilder() {
  Json::CharReaderBuilder builder;
  builder["collectComments"] = false;
  builder["allowTrailingCommas"] = false;
  return builder;
}

Json::StreamWriterBuilder makeWriterBuilder() {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  builder["commentStyle"] = "None";
  return builder;
}

}  // namespace

bool parseJson(const std::string& text, Json::Value& value) {
  static const Json::CharReaderBuilder builder = makeReaderBuilder();
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  return reader->parse(text.data(), text.data() + text.size(), &value, nullptr);
}

std::string writeCompactJson(const Json::Value& value) {
  static const Json::StreamWriterBuilder builder = makeWriterBuilder();
  return Json::writeString(builder, value) + "\n";
}

}  // namespace zantrio
