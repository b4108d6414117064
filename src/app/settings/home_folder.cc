#include "app/settings/home_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace zantrio {
namespace {

void getHomeFromUserDatabase(std::string& folder) {
  const long suggested = sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> buffer(suggested > 0 ? static_cast<std::size_t>(suggested) : 16384);
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr &&
      found->pw_dir != nullptr) {
    folder = found->pw_dir;
  }
}

}  // namespace

void readHomeFolder(std::string& folder) {
  // The environment is not changed once threads run.
  if (const char* home = std::getenv("HOME")) {  // NOLINT(concurrency-mt-unsafe)
    folder = home;
  } else {
    getHomeFromUserDatabase(folder);
  }
}

}  // namespace zantrio
