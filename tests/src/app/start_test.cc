// The built executable, where it ends before it opens a window.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/temporary_folder.h"

namespace zantrio {
namespace {

namespace fs = std::filesystem;

// Runs a copy of the bundle with a temporary home folder.
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
    const std::string line = "cd '" + folder_.path() + "' && unset DISPLAY && HOME='" + home() +
                             "' PATH=\"" + bundle() + "/bin:$PATH\" timeout 60 " + command +
                             " 2>&1";
    FILE* const pipe = popen(line.c_str(), "r");
    std::string output;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
      output.push_back(static_cast<char>(c));
    }
    return {WEXITSTATUS(pclose(pipe)), output};
  }

  std::string bundle() const { return folder_.path() + "/My Zantrio"; }
  std::string home() const { return folder_.path() + "/home"; }
  std::string dataFolder() const { return home() + "/Library/Application Support/Zantrio CEF"; }
  std::string logText() const {
    std::ifstream file(dataFolder() + "/zt_app.log");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  const test::TemporaryFolder folder_;
};

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST_F(Start, TellsVersionAndUsageFromWhereverItIsCalled) {
  fs::create_symlink(bundle() + "/bin/zantrio", folder_.path() + "/link");
  for (const char* program : {"zantrio", "./link", "'./My Zantrio/bin/zantrio'"}) {
    const Result version = run(std::string(program) + " --version");
    EXPECT_EQ(version.exitCode, 0) << program;
    EXPECT_EQ(version.output, "Zantrio " ZANTRIO_VERSION "\n") << program;
  }
  const Result help = run("zantrio --help");
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_EQ(help.output.find("Usage: zantrio [FILE...]"), 0U);
  const Result refused = run("zantrio --fast");
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_TRUE(contains(refused.output, "unknown option '--fast'"));
  EXPECT_FALSE(fs::exists(home() + "/Library"));
  EXPECT_EQ(run("zantrio-process").exitCode, 255);
}

TEST_F(Start, SaysInOneLineWhenItsInformationFileIsMissingOrMalformed) {
  fs::remove(bundle() + "/Info.plist");
  const Result missing = run("./My*/bin/zantrio");
  std::ofstream(bundle() + "/Info.plist") << "<plist><dict><key>CFBundle";
  const Result malformed = run("zantrio");
  for (const auto& [result, text] : {std::pair{missing, "Info.plist cannot be opened"},
                                     {malformed, "Info.plist is not a property list dictionary"}}) {
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.output, text)) << result.output;
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1) << result.output;
    EXPECT_TRUE(contains(logText(), text));
  }
  struct stat status {};
  ASSERT_EQ(stat(dataFolder().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0700U) << "its data is kept from other users";
}

TEST_F(Start, SaysWhenItsDataFolderCannotBeWritten) {
  std::ofstream(home() + "/Library") << "in the way";
  const Result result = run("zantrio");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output,
            "zantrio: The data folder " + dataFolder() + "/ cannot be written: Not a directory\n");
}

}  // namespace
}  // namespace zantrio
