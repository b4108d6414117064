#pragma once

#include <json/value.h>

#include <string>
#include <vector>

namespace zantrio::test {

// "path/name" of each record, "null/name" for a file in the root.
inline std::vector<std::string> placesOf(const Json::Value& files) {
  std::vector<std::string> places;
  for (const Json::Value& file : files) {
    const Json::Value& path = file["path"];
    places.push_back((path.isNull() ? "null" : path.asString()) + "/" + file["name"].asString());
  }
  return places;
}

}  // namespace zantrio::test
