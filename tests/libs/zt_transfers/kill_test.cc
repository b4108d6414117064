#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "fault_server.h"
#include "os/unique_fd.h"
#include "sandbox.h"

namespace zt_transfers::test {
namespace {

using Clock = std::chrono::steady_clock;

// A run of kill_probe in a process of its own.
class CProbe {
 public:
  CProbe(const std::string& folder, const std::string& url, int uploads, int downloads) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
      throw std::runtime_error("no pipe");
    }
    output_ = CUniqueFd(ends[0]);
    const CUniqueFd input(ends[1]);
    const std::string up = std::to_string(uploads);
    const std::string down = std::to_string(downloads);
    process_ = ::fork();
    if (process_ == 0) {
      ::dup2(input.get(), STDOUT_FILENO);
      ::execl(ZANTRIO_KILL_PROBE, "kill_probe", folder.c_str(), url.c_str(), up.c_str(),
              down.c_str(), static_cast<char*>(nullptr));
      ::_exit(127);
    }
  }
  ~CProbe() {
    if (process_ > 0) {
      kill();
    }
  }
  CProbe(const CProbe&) = delete;
  CProbe& operator=(const CProbe&) = delete;

  void kill() {
    ::kill(process_, SIGKILL);
    wait();
  }
  int wait() {
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    return status;
  }
  // All it has printed; ends with the process.
  std::string output() {
    std::string text;
    char buffer[4096];
    for (ssize_t count = 0; (count = ::read(output_.get(), buffer, sizeof buffer)) > 0;) {
      text.append(buffer, static_cast<std::size_t>(count));
    }
    return text;
  }

 private:
  CUniqueFd output_;
  pid_t process_ = -1;
};

// For each test.
std::chrono::seconds budget() {
  constexpr int kTests = 3;
  const char* seconds = std::getenv("ZANTRIO_SOAK_SECONDS");  // NOLINT(concurrency-mt-unsafe)
  return std::chrono::seconds(seconds == nullptr ? 6 : std::atoi(seconds) / kTests);
}

// Rounds of transfers, each killed at random moments again and again until it is through.
class Kill : public ::testing::Test {
 protected:
  // Sizes from nothing to some hundred kilobytes, and a few that go in parts.
  static std::string content(int number) {
    const std::size_t small = number % 20 == 0 ? 300'000 : number * 7;
    return patternOf(number % 100 == 50 ? 6'000'000 : small, static_cast<unsigned>(number));
  }

  void killAgainAndAgain(int uploads, int downloads) {
    const auto end = Clock::now() + budget();
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
      return CProbe(sandbox->folder().string(), server->url(""), uploads, downloads);
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
