#include "shown_text/secrets.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace shown_text {
namespace {

// Sorted.
constexpr auto kSecretNames = std::to_array<std::string_view>({
    "access_token",
    "accesstoken",
    "api_key",
    "apikey",
    "auth",
    "authorization",
    "awsaccesskeyid",
    "client_secret",
    "cookie",
    "id_token",
    "key-pair-id",
    "passwd",
    "password",
    "policy",
    "refresh_token",
    "secret",
    "set-cookie",
    "sig",
    "signature",
    "token",
    "x-amz-credential",
    "x-amz-security-token",
    "x-amz-server-side-encryption-customer-key",
    "x-amz-signature",
    "x-goog-credential",
    "x-goog-signature",
});

char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool isNameCharacter(char c) {
  const char low = lowered(c);
  return (low >= 'a' && low <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

std::string lowered(std::string_view text) {
  std::string low(text);
  std::transform(low.begin(), low.end(), low.begin(), [](char c) { return lowered(c); });
  return low;
}

bool isSecretName(const std::string& name) {
  return std::binary_search(kSecretNames.begin(), kSecretNames.end(), name);
}

// Their values contain blanks.
bool isHeaderName(const std::string& name) {
  return name == "authorization" || name == "cookie" || name == "set-cookie";
}

bool isOneOf(std::string_view characters, char c) {
  return characters.find(c) != std::string_view::npos;
}

std::size_t skip(std::string_view text, std::size_t at, std::string_view characters) {
  return std::min(text.find_first_not_of(characters, at), text.size());
}

// The characters after a name at `at` up to its value; 0: no value follows.
std::size_t separatorAt(std::string_view text, std::size_t at) {
  const std::size_t sign = skip(text, at, "\\\" ");
  if (sign == text.size() || !isOneOf("=:", text[sign])) {
    return 0;
  }
  return skip(text, sign + 1, "\\\" ") - at;
}

// In a log a header's value ends with its quotes or its line.
std::size_t valueEnd(std::string_view text, std::size_t at, bool isHeader) {
  const std::string_view ends = isHeader ? "\"\\\r\n" : "\"\\\r\n\t &#;,'<>)}";
  return std::min(text.find_first_of(ends, at), text.size());
}

void mask(std::string& text, std::size_t begin, std::size_t end) {
  std::fill(text.begin() + static_cast<std::ptrdiff_t>(begin),
            text.begin() + static_cast<std::ptrdiff_t>(end), '*');
}

void maskValues(std::string& text) {
  std::size_t at = 0;
  while (at < text.size()) {
    const auto begin =
        std::find_if(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), isNameCharacter);
    const auto end = std::find_if_not(begin, text.end(), isNameCharacter);
    const std::string name = lowered(std::string_view(begin, end));
    at = static_cast<std::size_t>(end - text.begin());
    if (!isSecretName(name)) {
      continue;
    }
    if (const std::size_t separator = separatorAt(text, at); separator != 0) {
      const std::size_t value = at + separator;
      at = valueEnd(text, value, isHeaderName(name));
      mask(text, value, at);
    }
  }
}

// "user:password@" of URLs.
void maskUsers(std::string& text) {
  constexpr std::string_view kStart = "://";
  for (auto start = text.find(kStart); start != std::string::npos;
       start = text.find(kStart, start + kStart.size())) {
    const std::size_t user = start + kStart.size();
    const std::size_t end = std::min(text.find_first_of("/?#\"\\ \r\n\t", user), text.size());
    const std::size_t host = std::string_view(text).substr(user, end - user).rfind('@');
    if (host != std::string_view::npos) {
      mask(text, user, user + host);
    }
  }
}

}  // namespace

void maskSecrets(std::string& text) {
  maskUsers(text);
  maskValues(text);
}

}  // namespace shown_text
