#pragma once

#include <set>
#include <string>

#include "base/url_parts.h"

namespace zt_transfers {

// Servers that were found not to take uploads in parts, so that they are not asked for every file.
//
// Thread: the loop's.
class CMultipartSupport {
 public:
  bool mayHave(const std::string& url) const { return without_.count(originOf(url)) == 0; }
  void hasNot(const std::string& url) { without_.insert(originOf(url)); }
  void clear() { without_.clear(); }

 private:
  std::set<std::string> without_;
};

}  // namespace zt_transfers
