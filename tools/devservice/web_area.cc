#include "devservice/web_area.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "devservice/file_io.h"
#include "devservice/http_error.h"
#include "devservice/names.h"

namespace zantrio::devservice {

namespace fs = std::filesystem;

namespace {

// The page loads nothing from other sites, and runs no script that is in a document.
constexpr const char* kContentPolicy =
    "default-src 'self'; img-src 'self' data:; object-src 'none'; frame-src 'none'; "
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

// The media type of a file, by its extension.
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

[[noreturn]] void notFound(const CExchange& exchange) {
  throw CHttpError(404, "not_found", "There is nothing at " + printable(exchange.path()) + ".");
}

bool liesBelow(const fs::path& path, const fs::path& folder) {
  return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first ==
         folder.end();
}

fs::path fileBelow(const fs::path& folder, const std::string& relative, const CExchange& exchange) {
  if (!pathProblem(relative).empty()) {
    notFound(exchange);
  }
  std::error_code error;
  const fs::path root = fs::canonical(folder, error);
  fs::path path = fs::canonical(root / relative, error);
  if (error || !liesBelow(path, root) || !fs::is_regular_file(path)) {
    notFound(exchange);
  }
  return path;
}

}  // namespace

CWebArea::CWebArea(fs::path web, fs::path javascript)
    : web_(std::move(web)), javascript_(std::move(javascript)) {}

void CWebArea::handle(CExchange& exchange) {
  if (exchange.method() != "GET" && exchange.method() != "HEAD") {
    throw CHttpError(405, "not_supported", "The web application can only be read.");
  }
  const fs::path path = find(exchange);
  auto& response = exchange.response;
  response.set("Cache-Control", "no-cache");
  response.set("X-Content-Type-Options", "nosniff");
  response.set("Content-Security-Policy", kContentPolicy);
  response.setContentType(mimeType(path.filename().string()));
  const std::string content = readText(path);
  exchange.discardBody();
  response.sendBuffer(content.data(), content.size());
}

fs::path CWebArea::find(const CExchange& exchange) const {
  const auto& segments = exchange.segments();
  if (segments.size() == 1 || (segments.size() == 2 && segments[1].empty())) {
    return fileBelow(web_, "index.html", exchange);
  }
  std::string relative;
  for (std::size_t i = 1; i < segments.size(); ++i) {
    relative += (i > 1 ? "/" : "") + segments[i];
  }
  // Debian keeps each library in its own folder: jquery.min.js in jquery/.
  if (segments.size() == 3 && segments[1] == "lib") {
    const std::string library = segments[2].substr(0, segments[2].find('.'));
    return fileBelow(javascript_, library + "/" + segments[2], exchange);
  }
  return fileBelow(web_, relative, exchange);
}

}  // namespace zantrio::devservice
