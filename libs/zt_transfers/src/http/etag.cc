#include "http/etag.h"

#include <algorithm>

#include "base/ascii.h"

namespace zt_transfers {
namespace {

constexpr std::size_t kDigestDigits = 32;

bool isDigest(std::string_view text) {
  return text.size() == kDigestDigits && std::all_of(text.begin(), text.end(), [](char character) {
           return hexDigitValue(character) >= 0;
         });
}

}  // namespace

std::string_view bareETag(std::string_view etag) {
  etag = trimmed(etag);
  if (startsWithIgnoringCase(etag, "W/")) {
    etag.remove_prefix(2);
  }
  if (etag.size() >= 2 && etag.front() == '"' && etag.back() == '"') {
    etag = etag.substr(1, etag.size() - 2);
  }
  return etag;
}

std::optional<std::string> md5OfETag(std::string_view etag) {
  etag = bareETag(etag);
  if (!isDigest(etag)) {
    return std::nullopt;
  }
  return loweredAscii(etag);
}

std::optional<std::string> compositeOfETag(std::string_view etag) {
  constexpr std::size_t kMaxDigits = 5;  // of the number of parts
  etag = bareETag(etag);
  const std::string_view count = etag.substr(std::min(etag.size(), kDigestDigits + 1));
  const bool isCount = !count.empty() && count.size() <= kMaxDigits &&
                       count.find_first_not_of("0123456789") == std::string_view::npos;
  if (!isCount || etag[kDigestDigits] != '-' || !isDigest(etag.substr(0, kDigestDigits))) {
    return std::nullopt;
  }
  return loweredAscii(etag);
}

}  // namespace zt_transfers
