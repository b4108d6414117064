#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <thread>

#include "fault_server.h"
#include "probe.h"
#include "sandbox.h"

namespace zt_transfers::test {
namespace {

using Clock = std::chrono::steady_clock;

// Rounds of transfers, each killed at random moments again and again until it is through.
class Kill : public ::testing::Test {
 protected:
  // Sizes from nothing to some hundred kilobytes, and a few multipart uploads.
  static std::string content(int number) {
    const std::size_t small = number % 20 == 0 ? 300'000 : number * 7;
    return patternOf(number % 100 == 50 ? 6'000'000 : small, static_cast<unsigned>(number));
  }

  void killAgainAndAgain(int uploads, int downloads) {
    const auto end = Clock::now() + killingTime();
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    random.seed(seed);
    int rounds = 0;
    while (Clock::now() < end && !HasFailure()) {
      ++rounds;
      beginRound(uploads, downloads);
      transfer(uploads, downloads, end);
      checkUploads(uploads);
      checkDownloads(downloads);
      checkNothingWasRepeated();
    }
    std::printf("%d kills in %d rounds of %d uploads and %d downloads\n", kills, rounds, uploads,
                downloads);
    EXPECT_GT(kills, 3);
  }

 private:
  // Each has a server and a folder of its own.
  void beginRound(int uploads, int downloads) {
    completed.clear();
    server = std::make_unique<CFaultServer>();
    server->planForAll(fault::slow(4'000'000));
    sandbox = std::make_unique<CSandbox>();
    for (int number = 0; number < uploads; ++number) {
      sandbox->file("file" + std::to_string(number), content(number));
    }
    std::filesystem::create_directory(target());
    std::ofstream list(sandbox->folder() / "downloads");
    for (int number = 0; number < downloads; ++number) {
      const std::string object = content(number);
      server->put("/down/" + std::to_string(number), object);
      // Not everything is told of every file.
      list << (number % 3 == 0 ? 0 : object.size()) << ' '
           << (number % 2 == 0 ? md5Of(object) : "-") << '\n';
    }
  }
  void transfer(int uploads, int downloads, Clock::time_point end) {
    const auto begin = [&] {
      return CProbe({sandbox->folder().string(), server->url(""), std::to_string(uploads),
                     std::to_string(downloads)});
    };
    while (Clock::now() < end) {
      auto probe = begin();
      // A random moment is what this is about; some late enough for the large ones.
      const std::chrono::milliseconds life(random() % (random() % 8 == 0 ? 2500 : 150));
      std::this_thread::sleep_for(life);
      probe.kill();
      ++kills;
      if (noteCompleted(probe.output())) {
        return;
      }
    }
    auto probe = begin();
    const std::string output = probe.output();
    ASSERT_EQ(probe.wait(), 0);
    noteCompleted(output);
  }
  // Whether all are.
  bool noteCompleted(const std::string& output) {
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
      if (line == "all") {
        return true;
      }
      const bool first = completed.emplace(line, requestsFor(line)).second;
      EXPECT_TRUE(first) << line << " was told to be completed twice";
    }
    return false;
  }
  void checkUploads(int uploads) {
    for (int number = 0; number < uploads; ++number) {
      const auto object = server->object("/up/" + std::to_string(number));
      ASSERT_TRUE(object.has_value()) << number;
      EXPECT_TRUE(*object == content(number)) << number;
    }
  }
  void checkDownloads(int downloads) {
    std::vector<std::string> expected;
    for (int number = 0; number < downloads; ++number) {
      expected.push_back("file" + std::to_string(number));
      EXPECT_TRUE(contentOf(target() / expected.back()) == content(number)) << number;
    }
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(target())) {
      names.push_back(entry.path().filename().string());
    }
    EXPECT_THAT(names, ::testing::UnorderedElementsAreArray(expected));
  }
  // It can have been completed without having been told before a kill.
  void checkNothingWasRepeated() {
    for (const auto& [name, requests] : completed) {
      EXPECT_EQ(requestsFor(name), requests)
          << name << " was transferred again after it was told to be completed";
    }
  }

  std::filesystem::path target() const { return sandbox->folder() / "target"; }
  std::size_t requestsFor(const std::string& name) { return server->requestsTo("/" + name).size(); }

  std::unique_ptr<CSandbox> sandbox;
  std::unique_ptr<CFaultServer> server;
  std::minstd_rand random;
  int kills = 0;
  // How many requests there had been for a file when it was told to be completed.
  std::map<std::string, std::size_t> completed;
};

TEST_F(Kill, LosesNoUploadAndSendsNothingAgainThatWasCompleted) {
  killAgainAndAgain(400, 0);
}

TEST_F(Kill, BringsEveryDownloadOnceUnderItsNameAndLeavesNothingElse) {
  killAgainAndAgain(0, 400);
}

TEST_F(Kill, DoesTheSameInBothDirectionsAtOnce) {
  killAgainAndAgain(150, 150);
}

}  // namespace
}  // namespace zt_transfers::test
