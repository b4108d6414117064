#pragma once

#include <set>
#include <string>

#include "base/url_parts.h"

namespace zt_transfers {

// Properties of servers, learnt from their responses and kept until the manager stops.
//
// Thread: the loop's.
class CServerTraits {
 public:
  // Servers that refused a multipart upload are not asked again for every file.
  bool mayTakeMultipart(const std::string& url) const { return !has(withoutMultipart_, url); }
  void noteNoMultipart(const std::string& url) { withoutMultipart_.insert(originOf(url)); }

  // Files for servers whose ETags are MD5 digests are hashed while they are sent. Files for other
  // servers are hashed afterwards, and only if a digest comes back after all.
  bool givesDigests(const std::string& url) const { return has(withDigests_, url); }
  void noteDigest(const std::string& url, bool gaveOne) {
    if (gaveOne) {
      withDigests_.insert(originOf(url));
    } else {
      withDigests_.erase(originOf(url));
    }
  }

  void clear() { *this = {}; }

 private:
  using Origins = std::set<std::string>;

  static bool has(const Origins& origins, const std::string& url) {
    return origins.count(originOf(url)) != 0;
  }

  Origins withoutMultipart_;
  Origins withDigests_;
};

}  // namespace zt_transfers
