#include "http/error_document.h"

#include "base/ascii.h"
#include "http/xml_text.h"

namespace zt_transfers {
namespace {

constexpr std::size_t kLongestCode = 64;

}  // namespace

std::optional<std::string> errorDocumentCode(std::string_view body) {
  if (body.find("Error") == std::string_view::npos) {
    return std::nullopt;  // most answers: nothing to be parsed
  }
  const CXmlText document(body);
  const pugi::xml_node root = document.root("Error");
  if (!root) {
    return std::nullopt;
  }
  const std::string_view code = trimmed(CXmlText::textIn(root, "Code"));
  return code.empty() ? "unnamed" : std::string(code.substr(0, kLongestCode));
}

}  // namespace zt_transfers
