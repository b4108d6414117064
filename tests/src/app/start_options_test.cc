#include "app/start_options.h"

#include <gtest/gtest.h>

#include "app/open_files.h"

namespace zantrio {
namespace {

using Texts = std::vector<std::string>;

TEST(StartOptions, TakeWhatIsNoOptionAsFiles) {
  const StartOptions options = parseStartOptions({"a", "-", "--", "--help", "-x"});
  EXPECT_EQ(options.files, (Texts{"a", "-", "--help", "-x"}));
  EXPECT_FALSE(options.help);
  EXPECT_EQ(options.error, "");
}

TEST(StartOptions, KnowHelpAndVersion) {
  EXPECT_TRUE(parseStartOptions({"--help"}).help);
  EXPECT_TRUE(parseStartOptions({"a", "--version"}).version);
}

TEST(StartOptions, NameTheOptionThatIsUnknown) {
  EXPECT_NE(parseStartOptions({"--fast"}).error.find("--fast"), std::string::npos);
}

TEST(OpenFiles, BecomeAbsolute) {
  EXPECT_EQ(absolutePaths({"x", "../y/", "/z", "./a b"}, "/here/now"),
            (Texts{"/here/now/x", "/here/y/", "/z", "/here/now/a b"}));
}

}  // namespace
}  // namespace zantrio
