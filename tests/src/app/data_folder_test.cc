#include "app/data_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/temporary_folder.h"

namespace zantrio {
namespace {

namespace fs = std::filesystem;

TEST(DataFolder, IsItsOwnersAloneWithAllThatIsInItWhoeverMadeIt) {
  const test::TemporaryFolder home;
  const mode_t before = ::umask(0);
  home.makeFile("outside", "");
  home.makeFile("data/zt_app.log", "");
  home.makeFile("data/Cache/file", "");
  fs::create_symlink("../outside", home.path() + "/data/link");
  EXPECT_FALSE(prepareDataFolder(home.path() + "/data"));
  EXPECT_FALSE(prepareDataFolder(home.path() + "/new/data"));
  ::umask(before);
  const std::pair<const char*, int> expected[] = {
      {"data", 0700},       {"data/zt_app.log", 0600},
      {"data/Cache", 0700}, {"data/link", 0666},  // what it leads to
      {"new/data", 0700},
  };
  for (const auto& [name, mode] : expected) {
    EXPECT_EQ(static_cast<int>(fs::status(home.path() + "/" + name).permissions()), mode) << name;
  }
  EXPECT_EQ(prepareDataFolder(home.path() + "/outside/data"), std::errc::not_a_directory);
}

}  // namespace
}  // namespace zantrio
