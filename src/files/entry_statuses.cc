#include "files/entry_statuses.h"

#include <cerrno>
#include <climits>

namespace zantrio {

std::vector<EntryStatus> readEntryStatuses(const CFolderListing& listing, const std::string& prefix,
                                           const std::vector<std::string>& names) {
  const int folder = listing.descriptor();
  std::vector<EntryStatus> entries(names.size());
  for (std::size_t index = 0; index < names.size(); ++index) {
    EntryStatus& entry = entries[index];
    if (prefix.size() + names[index].size() >= PATH_MAX) {
      entry.error = ENAMETOOLONG;  // nobody could open it
    } else {
      entry.error = readFileStatus(folder, names[index], entry.status);
    }
  }
  return entries;
}

}  // namespace zantrio
