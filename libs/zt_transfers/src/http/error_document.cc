#include "http/error_document.h"

#include "text/ascii.h"

namespace zt_transfers {
namespace {

constexpr std::size_t kLongestCode = 64;

// Skips the byte order mark, blanks, declarations and comments before the root element.
std::string_view fromRoot(std::string_view body) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (body.starts_with(kByteOrderMark)) {
    body.remove_prefix(kByteOrderMark.size());
  }
  for (body = trimmed(body); body.starts_with("<?") || body.starts_with("<!");
       body = trimmed(body)) {
    const std::string_view end = body.starts_with("<!--") ? "-->" : ">";
    const auto at = body.find(end);
    if (at == std::string_view::npos) {
      return {};
    }
    body.remove_prefix(at + end.size());
  }
  return body;
}

}  // namespace

std::optional<std::string> errorDocumentCode(std::string_view body) {
  constexpr std::string_view kRoot = "<Error";
  constexpr std::string_view kCodeBegin = "<Code>";
  body = fromRoot(body);
  if (!body.starts_with(kRoot)) {
    return std::nullopt;
  }
  const std::string_view after = body.substr(kRoot.size());
  if (after.empty() ||
      std::string_view("> \t\r\n/").find(after.front()) == std::string_view::npos) {
    return std::nullopt;
  }
  const auto begin = body.find(kCodeBegin);
  if (begin == std::string_view::npos) {
    return "unnamed";
  }
  const std::string_view code = body.substr(begin + kCodeBegin.size());
  const std::string_view text = trimmed(code.substr(0, code.find('<')));
  return std::string(text.substr(0, kLongestCode));
}

}  // namespace zt_transfers
