#include "services/openable_url.h"

#include <Poco/Exception.h>
#include <Poco/URI.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace zantrio {
namespace {

bool isLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// The characters that a URL may contain: no blanks, quotes, backslashes, control characters or
// non-ASCII bytes.
bool isUrlCharacter(char c) {
  constexpr std::string_view kMarks = "-._~:/?#[]@!$&'()*+,;=%";
  return isLetterOrDigit(c) || kMarks.find(c) != std::string_view::npos;
}

bool isWebScheme(std::string_view scheme) {
  return scheme == "http" || scheme == "https";
}

bool isMessageScheme(std::string_view scheme) {
  constexpr std::array<std::string_view, 3> kSchemes = {"mailto", "tel", "sms"};
  return std::find(kSchemes.begin(), kSchemes.end(), scheme) != kSchemes.end();
}

}  // namespace

bool isOpenableUrl(const std::string& url) {
  if (!std::all_of(url.begin(), url.end(), isUrlCharacter)) {
    return false;
  }
  try {
    const Poco::URI parsed(url);  // scheme and host come out in lower case
    const std::string& scheme = parsed.getScheme();
    return (isWebScheme(scheme) && !parsed.getHost().empty()) ||
           (isMessageScheme(scheme) && !parsed.getPathEtc().empty());
  } catch (const Poco::Exception&) {
    return false;
  }
}

}  // namespace zantrio
