#pragma once

#include <set>
#include <string>

#include "base/url_parts.h"

namespace zt_transfers {

// Servers whose ETags are digests of what was sent. What they get is hashed on its way; what others
// get is hashed only should a digest come back after all, since there is mostly nothing to compare.
//
// Thread: the loop's.
class CDigestTags {
 public:
  bool expectedOf(const std::string& url) const { return with_.count(originOf(url)) != 0; }
  void learn(const std::string& url, bool gaveOne) {
    if (gaveOne) {
      with_.insert(originOf(url));
    } else {
      with_.erase(originOf(url));
    }
  }
  void clear() { with_.clear(); }

 private:
  std::set<std::string> with_;
};

}  // namespace zt_transfers
