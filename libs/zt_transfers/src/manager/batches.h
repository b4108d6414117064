#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zt_transfers {

inline constexpr std::size_t kFilesAtOnce = 1024;

// Hands a long list on in portions, so that copies of it stay small and the engine gets to its
// transfers in between. Calls at least once.
template <typename Item, typename Use>
void inBatches(const std::vector<Item>& items, Use use) {
  auto at = items.begin();
  do {
    const auto left = static_cast<std::size_t>(items.end() - at);
    const auto end = at + static_cast<std::ptrdiff_t>(std::min(left, kFilesAtOnce));
    use(at, end);
    at = end;
  } while (at != items.end());
}

}  // namespace zt_transfers
