#include "app/start_options.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "app/open_files.h"
#include "src/fakes/test_bundle.h"

namespace zantrio {
namespace {

using Texts = std::vector<std::string>;

TEST(StartOptions, TakeWhatIsNoOptionAsFiles) {
  const StartOptions options = parseStartOptions({"a", "--", "--help", "-"});
  EXPECT_EQ(options.files, (Texts{"a", "--help", "-"}));
  EXPECT_FALSE(options.help);
  EXPECT_NE(parseStartOptions({"-"}).error, "");
  EXPECT_FALSE(parseStartOptions({"off-screen-rendering"}).offScreenRendering);
  EXPECT_TRUE(parseStartOptions({"a", "--off-screen-rendering"}).offScreenRendering);
}

TEST(OpenFiles, BecomeAbsoluteWithoutASlashBehindAFolderUnlessTheirFolderIsGone) {
  EXPECT_EQ(absolutePaths({"x", "../y/", "/z", "./a b", "", ".", "/"}, "/here/now"),
            (Texts{"/here/now/x", "/here/y", "/z", "/here/now/a b", "/here/now", "/"}));

  const test::TestBundle place;
  const auto before = std::filesystem::current_path();
  std::filesystem::create_directory(place.folder() + "/gone");
  std::filesystem::current_path(place.folder() + "/gone");
  std::filesystem::remove(place.folder() + "/gone");
  EXPECT_EQ(workingFolder(), "");
  EXPECT_EQ(absolutePaths({"/z", "x", ""}, workingFolder()), (Texts{"/z"}));
  std::filesystem::current_path(before);
  EXPECT_EQ(workingFolder(), before.string());
}

}  // namespace
}  // namespace zantrio
