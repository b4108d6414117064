#include "files/percent_encoding.h"

#include <array>

namespace zantrio {
namespace {

// The unreserved and path characters of RFC 3986, without ";": old readers take it as a separator
// of path parameters, and desktop systems encode it in file URLs.
constexpr std::string_view kKept =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/!$&'()*+,=:@";

constexpr std::array<bool, 256> makeKeptTable() {
  std::array<bool, 256> table{};
  for (const char character : kKept) {
    table[static_cast<unsigned char>(character)] = true;
  }
  return table;
}

constexpr std::array<bool, 256> kIsKept = makeKeptTable();

}  // namespace

void appendPercentEncodedPath(std::string_view path, std::string& url) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  url.reserve(url.size() + path.size() + 16);
  for (const char character : path) {
    const auto byte = static_cast<unsigned char>(character);
    if (kIsKept[byte]) {
      url += character;
    } else {
      const char encoded[] = {'%', kDigits[byte >> 4], kDigits[byte & 0xF]};
      url.append(encoded, sizeof encoded);
    }
  }
}

}  // namespace zantrio
