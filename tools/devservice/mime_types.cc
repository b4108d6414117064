#include "devservice/mime_types.h"

#include <unordered_map>

namespace zantrio::devservice {

std::string mimeType(std::string_view fileName) {
  static const std::unordered_map<std::string_view, std::string> kTypes = {
      {"html", "text/html; charset=utf-8"},
      {"css", "text/css; charset=utf-8"},
      {"js", "text/javascript; charset=utf-8"},
      {"json", "application/json; charset=utf-8"},
      {"map", "application/json; charset=utf-8"},
      {"txt", "text/plain; charset=utf-8"},
      {"svg", "image/svg+xml"},
      {"png", "image/png"},
      {"jpg", "image/jpeg"},
      {"ico", "image/x-icon"},
      {"woff2", "font/woff2"},
  };
  const auto dot = fileName.rfind('.');
  if (dot != std::string_view::npos) {
    if (const auto type = kTypes.find(fileName.substr(dot + 1)); type != kTypes.end()) {
      return type->second;
    }
  }
  return "application/octet-stream";
}

}  // namespace zantrio::devservice
