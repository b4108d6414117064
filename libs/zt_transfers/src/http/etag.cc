#include "http/etag.h"

#include <algorithm>

#include "text/ascii.h"

namespace zt_transfers {

std::optional<std::string> md5OfETag(std::string_view etag) {
  constexpr std::size_t kDigits = 32;
  etag = trimmed(etag);
  if (startsWithIgnoringCase(etag, "W/")) {
    etag.remove_prefix(2);
  }
  if (etag.size() >= 2 && etag.front() == '"' && etag.back() == '"') {
    etag = etag.substr(1, etag.size() - 2);
  }
  const bool isDigest = etag.size() == kDigits &&
                        std::all_of(etag.begin(), etag.end(),
                                    [](char character) { return hexDigitValue(character) >= 0; });
  if (!isDigest) {
    return std::nullopt;
  }
  return loweredAscii(etag);
}

}  // namespace zt_transfers
