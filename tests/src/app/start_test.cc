// The built executable, as far as it comes without a window.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "src/fakes/test_bundle.h"

namespace zantrio {
namespace {

namespace fs = std::filesystem;

// A copy of the bundle and a home, both of the test's own.
class Start : public testing::Test {
 protected:
  Start() {
    fs::create_directory(bundle());
    fs::copy(ZANTRIO_BUNDLE_DIR, bundle(), fs::copy_options::recursive);
    fs::create_directory(home());
  }

  struct Result {
    int exitCode;
    std::string output;  // and errors
  };

  // Runs a shell command line without a display.
  Result run(const std::string& command) const {
    const std::string line = "cd '" + folder_.folder() + "' && unset DISPLAY && HOME='" + home() +
                             "' PATH=\"" + bundle() + "/bin:$PATH\" timeout 60 " + command +
                             " 2>&1";
    FILE* const pipe = popen(line.c_str(), "r");
    std::string output;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
      output.push_back(static_cast<char>(c));
    }
    return {WEXITSTATUS(pclose(pipe)), output};
  }

  std::string bundle() const { return folder_.folder() + "/My Zantrio"; }
  std::string home() const { return folder_.folder() + "/home"; }
  std::string dataFolder() const { return home() + "/Library/Application Support/Zantrio CEF"; }
  std::string logText() const {
    std::ifstream file(dataFolder() + "/zt_app.log");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  test::TestBundle folder_;
};

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST_F(Start, TellsVersionAndUsageFromWhereverItIsCalled) {
  fs::create_symlink(bundle() + "/bin/zantrio", folder_.folder() + "/link");
  for (const char* program : {"zantrio", "./link", "'./My Zantrio/bin/zantrio'"}) {
    const Result version = run(std::string(program) + " --version");
    EXPECT_EQ(version.exitCode, 0) << program;
    EXPECT_EQ(version.output, "Zantrio " ZANTRIO_VERSION "\n") << program;
  }
  const Result help = run("zantrio --help");
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_EQ(help.output.find("Usage: zantrio [FILE...]"), 0U);
}

TEST_F(Start, RefusesOptionsItDoesNotKnow) {
  const Result result = run("zantrio --fast");
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_TRUE(contains(result.output, "unknown option '--fast'"));
  EXPECT_FALSE(fs::exists(home() + "/Library"));
}

TEST_F(Start, SaysWhenItsInformationFileIsMissingOrMalformed) {
  fs::remove(bundle() + "/Info.plist");
  const Result missing = run("./My*/bin/zantrio");
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_TRUE(contains(missing.output, bundle() + "/Info.plist cannot be opened"))
      << missing.output;
  EXPECT_TRUE(contains(logText(), "Info.plist cannot be opened"));

  std::ofstream(bundle() + "/Info.plist") << "{}";
  const Result malformed = run("zantrio");
  EXPECT_EQ(malformed.exitCode, 1);
  EXPECT_TRUE(contains(malformed.output, "is not a property list dictionary")) << malformed.output;
  EXPECT_TRUE(contains(logText(), "is not a property list dictionary"));
}

TEST_F(Start, KeepsItsDataFromOtherUsers) {
  fs::remove(bundle() + "/Info.plist");
  run("zantrio");
  struct stat status {};
  ASSERT_EQ(stat(dataFolder().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(Start, SaysWhenItsDataFolderCannotBeWritten) {
  std::ofstream(home() + "/Library") << "in the way";
  const Result result = run("zantrio");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_TRUE(contains(result.output, "The data folder " + dataFolder())) << result.output;
  EXPECT_TRUE(contains(result.output, "cannot be written: Not a directory")) << result.output;
}

TEST_F(Start, EndsThePlainProcessEntryAtOnce) {
  EXPECT_EQ(run("zantrio-process").exitCode, 255);
}

}  // namespace
}  // namespace zantrio
